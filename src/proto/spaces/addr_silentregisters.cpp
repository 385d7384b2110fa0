// Two spaces that exist and hold nothing: plug-in cards and cabinet rotation. Reads carry no data, writes do
// nothing.
#include "proto/spaces/spaces.h"

namespace ORVE_MCUC {
namespace {

int doNothing(IMD_proto3rd&) {
  return kDone;
}

void logAddress(const RegisterSpace&, const IMD_proto3rd& request) {
  PARLEND_TRACE(kInfo) << "Ssh_cmd: addr = " << CTrace::hex << request.proto.m_uiRegisterUnitAddress;
}

void logRefusal(int result) {
  PARLEND_TRACE(kError) << "=== Addr_CabinetRotationRegister ===call fun failed, result = " << result;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kPluginCardInfo>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kPluginCardInfo>({.read = &doNothing, .write = &doNothing, .entered = &logEntry});
  return kSpace;
}

const RegisterSpace& spaceAt(At<reg::kCabinetRotation>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kCabinetRotation>(
      {.read = &doNothing, .write = &doNothing, .entered = &logAddress, .refused = &logRefusal});
  return kSpace;
}

}  // namespace ORVE_MCUC
