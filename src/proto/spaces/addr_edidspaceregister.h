// The EDID of the current video input; a one-byte read looks for the input boards anew.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_EDIDSpaceRegister : public RegisterSpace<Addr_EDIDSpaceRegister> {
 public:
  static constexpr char kName[] = "Addr_EDIDSpaceRegister";
  static constexpr uint32_t kBase = reg::kEdid;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoEDIDSpace(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromEDIDSpace(IMD_proto3rd* msgIMD);
  static int WriteToEDIDSpace(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
