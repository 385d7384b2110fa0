// Backup information: a window into the parameter flash.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_BackupInfoRegister : public RegisterSpace<Addr_BackupInfoRegister> {
 public:
  static constexpr char kName[] = "Addr_BackupInfoRegister";
  static constexpr uint32_t kBase = reg::kBackupInfo;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoBackupInfo(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromBackupInfo(IMD_proto3rd* msgIMD);
  static int WriteToBackupInfo(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
