#include "proto/spaces/addr_silentregisters.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kPluginRows{
    offsetRow(reg::kPluginCardInfo, "plugin card info", "plugin card info register", {1, 512},
              &Addr_PluginCardInfoRegister::DoPluginCardInfo),
    Fshl_cmd{}};
static_assert(rowsAreSound(kPluginRows));
constexpr std::array kRotationRows{
    offsetRow(reg::kCabinetRotation, "cabinet rotation", "cabinet rotation register", {1, 69632},
              &Addr_CabinetRotationRegister::DoRotationInfo),
    Fshl_cmd{}};
static_assert(rowsAreSound(kRotationRows));

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_PluginCardInfoRegister::cmd_tblOffset = kPluginRows;

int Addr_PluginCardInfoRegister::DoPluginCardInfo(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromPluginCardInfo, &WriteToPluginCardInfo);
}
int Addr_PluginCardInfoRegister::ReadFromPluginCardInfo(IMD_proto3rd*) {
  return kDone;
}
int Addr_PluginCardInfoRegister::WriteToPluginCardInfo(IMD_proto3rd*) {
  return kDone;
}

constinit std::array<Fshl_cmd, 2> Addr_CabinetRotationRegister::cmd_tblOffset = kRotationRows;

int Addr_CabinetRotationRegister::Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int validDataBegin) {
  PARLEND_TRACE(kInfo) << "Ssh_cmd: addr = " << CTrace::hex << msgIMD->proto.m_uiRegisterUnitAddress;
  const int result = RegisterSpace::Ssh_cmd(msgIMD, tbl, validDataBegin);
  if (result == kBadLength || result == kBadAccess) {
    PARLEND_TRACE(kError) << "=== Addr_CabinetRotationRegister ===call fun failed, result = " << result;
  }
  return result;
}
int Addr_CabinetRotationRegister::DoRotationInfo(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromRotationInfo, &WriteToRotationInfo);
}
int Addr_CabinetRotationRegister::ReadFromRotationInfo(IMD_proto3rd*) {
  return kDone;
}
int Addr_CabinetRotationRegister::WriteToRotationInfo(IMD_proto3rd*) {
  return kDone;
}

}  // namespace ORVE_MCUC
