// Backup information: a window into the parameter flash.
#include "logwords.h"
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/flashread.h"

namespace ORVE_MCUC {
namespace {

constexpr WorkWords kReading{
    .section = {"============================ Begin Read BackupInfo ==============================",
                "============================ Finish Read BackupInfo ============================="},
    .failed = "=== ReadFromBackupInfo ===Read backup info flash failed. ret = "};

int ReadFromBackupInfo(IMD_proto3rd& request) {
  LogSection section(kReading.section);
  const int ret = replyFromFlash(request, flash::ofBackupInfo(request.proto.m_uiRegisterUnitAddress));
  if (logFailure(kReading, ret) == 0) return kDone;
  section.abandon();
  return kFailed;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kBackupInfo>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kBackupInfo>({.read = &ReadFromBackupInfo, .write = &queueWrite<DoBackupInfoKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
