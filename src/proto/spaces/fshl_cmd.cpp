#include "proto/spaces/fshl_cmd.h"

#include "mcuctrace.h"
#include "results.h"

namespace ORVE_MCUC {

int Ssh_checkFun(Fcheck_func* check, IMD_proto3rd* msgIMD) {
  const ThirdProtoMCUCMsg& request = msgIMD->proto;
  const int32_t length = request.m_usValidDataLength;
  if (length < check->cmdLen.cmdLenMin || length > check->cmdLen.cmdLenMax) {
    PARLEND_TRACE(kError) << "=== Ssh_checkFun ===Check Func: Unsupportd register max/min length.";
    return kBadLength;
  }
  const bool allowed = (request.m_ucCode == kCodeRead && (check->cmdType & kMayRead) != 0) ||
                       (request.m_ucCode == kCodeWrite && (check->cmdType & kMayWrite) != 0);
  if (!allowed) {
    PARLEND_TRACE(kError) << "=== Ssh_checkFun ===Check Func: Unsupportd register type.";
    return kBadAccess;
  }
  return kDone;
}

}  // namespace ORVE_MCUC
