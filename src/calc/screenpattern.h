// What the test-pattern generator has to be told to begin a pattern at a given pixel, and which pixels it
// then lights. Values in, values out: no hardware, no store, any thread.
#pragma once

#include <cstdint>
#include <span>

#include "maps/patternmap.h"

namespace ORVE_MCUC {

using PatternImage = std::span<uint8_t, pattern::kImageSize>;
using ConstPatternImage = std::span<const uint8_t, pattern::kImageSize>;

// Pixel pattern: the phases of both axes for the first pixel and the intervals in the image. False, and the
// phases cleared, when the first pixel is negative or not below the interval on an axis.
bool derivePixelPhases(PatternImage image);

// One axis of a block pattern. A first pixel in front of the screen has no block before it; a block without
// extent counts as none.
struct BlockPhase {
  uint16_t count = 0;  // blocks that begin before the first pixel
  uint16_t phase = 0;  // pixels
  bool negative = false;
};
constexpr BlockPhase blockPhase(int16_t first, uint16_t extent) {
  if (first < 0) return {0, static_cast<uint16_t>(-first), true};
  if (extent == 0) return {};
  return {static_cast<uint16_t>((extent + first - 1) / extent),
          static_cast<uint16_t>((extent - first % extent) % extent), false};
}
static_assert(blockPhase(100, 64).count == 2 && blockPhase(100, 64).phase == 28);
static_assert(blockPhase(-10, 32).count == 0 && blockPhase(-10, 32).phase == 10);

struct BlockPhases {
  BlockPhase x;
  BlockPhase y;
};
// Block pattern: counts and phases of both axes, stored in the image and returned.
BlockPhases deriveBlockPhases(PatternImage image);

// The same by the kind in the image; other kinds leave it as it is.
void derivePhases(PatternImage image);

// Whether the generator lights a pixel of the screen: every interval-th pixel of a pixel pattern, every other
// block, like a chessboard, of a block pattern. False for an image without a pattern.
bool patternLights(ConstPatternImage image, uint16_t x, uint16_t y);

}  // namespace ORVE_MCUC
