// The device as a master or as a slave.
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "process/featureeffects.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr uint8_t kMasterRole = 0;
constexpr uint8_t kSlaveRole = 1;

void saveRole(uint8_t mark, uint8_t role) {
  if (writeFlash(flash::kRole, {&role, 1}) == 0) return;
  PARLEND_TRACE(kError) << "=== DoWriteFeatureInfo ===Set 0x0200_009d to ：" << CTrace::hex << mark
                        << ", save PbufMorSMode to flash failed !";
}

// The screen tables of the tools say which ports are backups; that holds no more.
void clearRoleTable(Data_Global& store, uint8_t mark) {
  constexpr std::array<uint8_t, 4> kCleared{};
  if (store.CopyConstDataToFlash(flash::kRoleTable, kCleared) == 0) {
    PARLEND_TRACE(kInfo) << "======Set  Device <Slave> 0x0200_009d to:" << CTrace::hex << mark
                         << " 0xA5, clear 0x05065000 flash  ok !!! !";
  } else {
    PARLEND_TRACE(kError) << "=== DoWriteFeatureInfo =========Set  Device <Slave> 0x0200_009d to 0xA5, clear "
                             "0x05065000 flash failed !";
  }
}

}  // namespace

void setRole(FeatureWrite& write) {
  Data_Global& store = write.store;
  const uint8_t mark = write.value();
  const uint8_t role = mark == fpga::kSlaveMark ? kSlaveRole : kMasterRole;
  store.PbufMorSMode = role;
  store.roleLoad.settle();
  PARLEND_TRACE(kInfo) << (role == kSlaveRole ? "=== PbufMorSMode Set Sender Mode salve!    -----  01"
                                              : "=== PbufMorSMode Set Sender Mode maste!   ------- 00");
  saveRole(mark, role);
  store.SendMasterOrBackup(role);
  writeFlash(flash::ofFeature(fpga::kBackupMark), {&mark, 1}, "DoWriteFeatureInfo");
  store.NormalBackupStatus = 0;
  clearRoleTable(store, mark);
}

}  // namespace ORVE_MCUC
