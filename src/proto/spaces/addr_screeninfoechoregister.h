// Screen information: the screen parameter table in memory, with the size of the receiving cards in it.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_ScreenInfoEchoRegister : public RegisterSpace<Addr_ScreenInfoEchoRegister> {
 public:
  static constexpr char kName[] = "Addr_ScreenInfoEchoRegister";
  static constexpr uint32_t kBase = reg::kScreenInfoEcho;
  static constexpr bool kLogsEntry = true;
  static constexpr bool kLogsMap = true;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoScreenInfoEcho(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromScreenInfoEcho(IMD_proto3rd* msgIMD);
  static int WriteToScreenInfoEcho(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
