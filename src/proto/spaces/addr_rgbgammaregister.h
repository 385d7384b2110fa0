// Gamma tables: reads come from the FPGA, writes go to flash.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_RGBGammaRegister : public RegisterSpace<Addr_RGBGammaRegister> {
 public:
  static constexpr char kName[] = "Addr_RGBGammaRegister";
  static constexpr uint32_t kBase = reg::kRGBGamma;
  static constexpr uint32_t kKeyMask = reg::kWideMask;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoRGBGammatable(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadRGBGammatable(IMD_proto3rd* msgIMD);
  static int WriteRGBGammatable(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
