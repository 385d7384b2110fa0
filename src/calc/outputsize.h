// The output size (DVI) that follows from the feature parameters.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

// Whether a write of length bytes at a feature register makes the output size be computed anew: one that
// touches the screen or the output size, or ends just before one of them.
bool changesOutputSize(uint32_t at, uint32_t length);

// What the output size is computed from; pixels.
struct OutputSizeSource {
  uint16_t outputWidth = 0;
  uint16_t outputHeight = 0;
  uint16_t mappedWidth = 0;
  uint16_t screenHeight = 0;
  uint16_t offsetX = 0;
  uint16_t offsetY = 0;
  bool bypass = false;  // the output includes the offset
};
struct OutputSize {
  uint16_t width = 0;
  uint16_t height = 0;
  bool ofScreen = false;  // no output size was set: the screen's
};
OutputSize outputSizeOf(const OutputSizeSource& source);

}  // namespace ORVE_MCUC
