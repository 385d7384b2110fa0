// Backup information: a window into the parameter flash.
#include "logwords.h"
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"

namespace ORVE_MCUC {
namespace {

constexpr SectionWords kReading{
    "============================ Begin Read BackupInfo ==============================",
    "============================ Finish Read BackupInfo ============================="};

int ReadFromBackupInfo(IMD_proto3rd& request) {
  LogSection section(kReading);
  const uint32_t address = flash::ofBackupInfo(request.proto.m_uiRegisterUnitAddress);
  if (replyFromFlash(request, address, {"ReadFromBackupInfo", "Read backup info flash failed. ret = "}) ==
      0) {
    return kDone;
  }
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
