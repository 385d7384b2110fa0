#include "proto/spaces/addr_backupinforegister.h"

#include "maps/flashmap.h"
#include "proto/store/flashread.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{offsetRow(reg::kBackupInfo, "backup info", "backup info register", {1, 512},
                                     &Addr_BackupInfoRegister::DoBackupInfo),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_BackupInfoRegister::cmd_tblOffset = kRows;

int Addr_BackupInfoRegister::DoBackupInfo(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromBackupInfo, &WriteToBackupInfo);
}

int Addr_BackupInfoRegister::ReadFromBackupInfo(IMD_proto3rd* msgIMD) {
  PARLEND_TRACE(kInfo) << "============================ Begin Read BackupInfo ==============================";
  const int ret = replyFromFlash(*msgIMD, flash::ofBackupInfo(msgIMD->proto.m_uiRegisterUnitAddress));
  if (ret != 0) {
    PARLEND_TRACE(kError) << "=== ReadFromBackupInfo ===Read backup info flash failed. ret = " << ret;
    return kFailed;
  }
  PARLEND_TRACE(kInfo) << "============================ Finish Read BackupInfo =============================";
  return kDone;
}

int Addr_BackupInfoRegister::WriteToBackupInfo(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, DoBackupInfoKey, "DoBackupInfoKey");
}

}  // namespace ORVE_MCUC
