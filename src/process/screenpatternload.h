// Test patterns: from a generator image to the FPGA. On the work thread.
#pragma once

#include <span>

#include "calc/screenpattern.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {

extern RelaxedByte ScreenPatternGenState;  // of the image that was loaded last

// Takes the screen's size from the FPGA into the image, derives the phases, and loads the generator. A size
// that cannot be read stays as the image has it.
void ScreenPatternGenProcess(PatternImage reg);

}  // namespace ORVE_MCUC
