// The basic hardware page, with model ID and serial number from the environment store.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_HwBasicInfoRegister : public RegisterSpace<Addr_HwBasicInfoRegister> {
 public:
  static constexpr char kName[] = "Addr_HwBasicInfoRegister";
  static constexpr uint32_t kBase = reg::kHwBasicInfo;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int validDataBegin);
  static int REG_HwBasicInfomation(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadHwBasicInfomation(IMD_proto3rd* msgIMD);
  static int WriteHwBasicInfomation(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
