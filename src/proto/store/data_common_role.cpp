// Master and backup roles of the output ports.
#include "logwords.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

// Four ports' roles lie behind each other.
struct RoleGroup {
  uint32_t fpga;
  const char* written;
};
constexpr RoleGroup kGroups[] = {
    {fpga::kMasterSlavePorts1To4, "Write to FPGA 0x18+"},
    {fpga::kMasterSlavePorts5To8, "Write to FPGA 0x98+"},
    {fpga::kMasterSlavePorts9To16, "Write to FPGA 0x100+"},
    {fpga::kMasterSlavePorts9To16 + 4, "Write to FPGA 0x104+"},
};
constexpr uint32_t kPortsOfGroup = 4;

constexpr uint8_t roleOf(uint8_t backup) {
  return backup != 0 ? fpga::kBackup : fpga::kMaster;
}

void saveRoles(uint32_t firstRegister, std::size_t count, uint8_t role) {
  std::array<uint8_t, 8> bytes{};
  bytes.fill(role);
  writeFlash(flash::ofFeature(firstRegister), std::span(bytes).first(count), "SendMasterOrBackup");
}

}  // namespace

void Data_Global::SendMasterOrBackup(uint8_t backup) {
  const LogSection section(
      {"============================ Begin set master/slave =============================",
       "============================ Finish set master/slave ============================"});
  const uint8_t role = roleOf(backup);
  PARLEND_TRACE(kInfo) << "Master or Slave = " << role;
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  for (uint32_t i = 0; i < kPortsOfGroup; ++i) {
    for (const RoleGroup& group : kGroups) {
      const int ret = writeThrough(*this, SendParameterReg, group.fpga + i, group.fpga + i, {&role, 1});
      PARLEND_TRACE(kInfo) << group.written << i << " the ret = " << ret;
    }
  }
  saveRoles(fpga::kMasterSlavePorts1To4, 4, role);
  saveRoles(fpga::kMasterSlavePorts5To8, 4, role);
  saveRoles(fpga::kMasterSlavePorts9To16, 8, role);
}

}  // namespace ORVE_MCUC
