// Advanced walls as text: one line a port, "0: 2x3 at 0,0 top-left-rows", with # before comments.
#pragma once

#include <string>

#include "wallplan.h"

namespace parlctl {

// Ports that no line names have no block. Throws peer::Error (Usage) with the number of the line.
AdvancedScreen parseBlocks(const std::string& text);
// The same of a file, at most 64 KiB; "-" is standard input.
AdvancedScreen readBlocks(const std::string& path);
// Lines for the ports in use.
std::string blocksText(const WallPlan& plan);

// A connection mode by its number or name; throws peer::Error (Usage).
uint8_t modeNumber(const std::string& text);

}  // namespace parlctl
