// Images of the register spaces that FPGA and flash hold. Owner: the store. Any thread reads single bytes;
// what an image and the FPGA must agree on changes under the image lock.
#pragma once

#include "mcucdatablock.h"

namespace ORVE_MCUC {

struct RegisterImages {
  ByteImage<512> SendParameterReg;      // feature parameters: FPGA registers 0x000..0x1FF
  ByteImage<392> ScreenParaReg;         // screen information
  ByteImage<512> HardwareScreenGenReg;  // test-pattern generator
};

}  // namespace ORVE_MCUC
