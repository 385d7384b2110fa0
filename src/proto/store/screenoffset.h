// The screen's offset on the output, as the FPGA takes it.
#pragma once

#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

// Writes the offset that the feature image asks for to the FPGA. Its offset mode says where it comes from: 0
// none, 2 the signed offsets that LSD has sent, anything else the offset registers.
void applyScreenOffset(RegisterImages& images);

}  // namespace ORVE_MCUC
