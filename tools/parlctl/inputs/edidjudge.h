// The opinion of edid-decode, where that program is installed.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "peer/frame.h"

namespace parlctl {

struct EdidOpinion {
  bool conformant = false;
  std::string text;  // all that it says
};
// Nothing without the program.
std::optional<EdidOpinion> edidOpinion(std::span<const uint8_t> edid);

}  // namespace parlctl
