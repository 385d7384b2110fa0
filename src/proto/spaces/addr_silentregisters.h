// Two spaces that exist and hold nothing: plug-in cards and cabinet rotation. Reads carry no data, writes do
// nothing.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_PluginCardInfoRegister : public RegisterSpace<Addr_PluginCardInfoRegister> {
 public:
  static constexpr char kName[] = "Addr_PluginCardInfoRegister";
  static constexpr uint32_t kBase = reg::kPluginCardInfo;
  static constexpr bool kLogsEntry = true;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoPluginCardInfo(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromPluginCardInfo(IMD_proto3rd* msgIMD);
  static int WriteToPluginCardInfo(IMD_proto3rd* msgIMD);
};

class Addr_CabinetRotationRegister : public RegisterSpace<Addr_CabinetRotationRegister> {
 public:
  static constexpr char kName[] = "Addr_CabinetRotationRegister";
  static constexpr uint32_t kBase = reg::kCabinetRotation;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int validDataBegin);
  static int DoRotationInfo(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromRotationInfo(IMD_proto3rd* msgIMD);
  static int WriteToRotationInfo(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
