// The pieces that the inputs of most targets are made of: a byte that says what, length u16, bytes.
#pragma once

#include <algorithm>

#include "mcucdatablock.h"

namespace fuzz {

// Options of a piece that is a request; its two lowest bits are the label's small half where it has no head.
inline constexpr uint8_t kLeaveChecksum = 0x80;
inline constexpr uint8_t kTickAfter = 0x40;
inline constexpr uint8_t kBeginsWithHead = 0x20;

/** Calls take(what, bytes) for each piece; the last one may be cut short. */
template <class Take>
void forEachPiece(std::span<const uint8_t> input, Take take) {
  ORVE_MCUC::ByteReader reader(input);
  while (reader.left() > 0) {
    const uint8_t what = reader.u8();
    const std::size_t length = reader.le16();
    take(what, reader.bytes(std::min(length, reader.left())));
  }
}

}  // namespace fuzz
