// Writes of peers into the table of card counts.
#pragma once

#include "proto/store/porttables.h"
#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

// As much of some bytes for VsPartPara as lies in a part: into the image, and the whole part to the FPGA. 0,
// or DriverUtil's result, logged with the words.
int writeNumberPart(const RegisterImages& images, const NumberPart& part, std::size_t at,
                    std::span<const uint8_t> bytes, FailureWords words);

}  // namespace ORVE_MCUC
