// The card's clock: six BCD bytes as people write a date and a time of day, without a zone.
#pragma once

#include <span>
#include <string>

#include "peer/frame.h"

namespace parlctl {

// "2024-02-29T23:59:58"; of bytes that no calendar has their digits.
std::string clockText(std::span<const uint8_t> bytes);
// The same back, with T or a blank between, from 2000 to 2099; "now" is this machine's local time. Throws
// peer::Error (Usage).
peer::Bytes clockBytes(const std::string& text);
// Whether a clock that was set shows what it should by now: the time itself and up to half a minute later.
bool clockIsNear(std::span<const uint8_t> set, std::span<const uint8_t> found);

}  // namespace parlctl
