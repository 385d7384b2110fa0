// Test patterns: what is asked for, the generator image that makes it, and what a wall then shows.
#pragma once

#include <array>
#include <string>

#include "calc/screenpattern.h"

namespace parlctl {

struct PatternPlan {
  uint8_t kind = 0;  // pattern::kPixels, kBlocks; anything else: off
  uint16_t width = 0;
  uint16_t height = 0;  // interval of pixels, or extent of a block
  int16_t x = 0;
  int16_t y = 0;  // first pixel of the pattern
};
using PatternBytes = std::array<uint8_t, ORVE_MCUC::pattern::kImageSize>;

// kind "pixels" or "blocks", size "8x8", first "3,0" or "-10,0". Throws peer::Error (Usage) on what the
// generator cannot begin: a first pixel outside of the first interval, or a block or more in front of the
// screen.
PatternPlan patternPlan(const std::string& kind, const std::string& size, const std::string& first);

// Puts a pattern into a generator image, phases and counts by the daemon's own calculation.
void putPattern(PatternBytes& image, const PatternPlan& plan);

struct WallSize {
  uint16_t width = 0;
  uint16_t height = 0;
};
// Letters for the upper left corner of a wall, at most 72 columns, and what a letter stands for.
std::string patternText(const PatternBytes& image, WallSize wall);
// The wall true to scale; of more than 50 intervals an axis the first 50.
std::string patternSvg(const PatternBytes& image, WallSize wall, const std::string& title);

}  // namespace parlctl
