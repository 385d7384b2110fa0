#include "proto/spaces/addr_softwaretableregister.h"

#include "maps/flashmap.h"
#include "proto/store/data_common.h"
#include "proto/store/flashread.h"

namespace ORVE_MCUC {
namespace {

constexpr Fshl_cmd tableRow(uint32_t key) {
  return offsetRow(key, "software table info", "software table info register", {1, 32768},
                   &Addr_SoftwareTableRegister::DoSoftwareTable);
}
constexpr std::array kRows{tableRow(reg::kSoftwareTable), tableRow(reg::kSoftwareTableUpper), Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

// What VSP is sent, and the requester is answered, for the trigger.
constexpr uint8_t kTriggerAnswer[] = {0xC8};

}  // namespace

constinit std::array<Fshl_cmd, 3> Addr_SoftwareTableRegister::cmd_tblOffset = kRows;

int Addr_SoftwareTableRegister::DoSoftwareTable(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromSoftwareTable, &WriteToSoftwareTable);
}

int Addr_SoftwareTableRegister::ReadFromSoftwareTable(IMD_proto3rd* msgIMD) {
  const uint32_t address = msgIMD->proto.m_uiRegisterUnitAddress;
  if (address == reg::kVspTrigger && msgIMD->proto.m_usValidDataLength == 1) {
    Data_Global::getInstance()->SendC8toVsp();
    replyWith(*msgIMD, kTriggerAnswer);
    PARLEND_TRACE(kInfo) << "Finish Sending 0xC8 to VSP. ";
    return kDone;
  }
  const int ret = replyFromFlash(*msgIMD, flash::ofSoftwareTable(address));
  if (ret == 0) return kDone;
  PARLEND_TRACE(kError) << "=== ReadFromSoftwareTable ===Read Bytes From Flash Failed. DriverRet = " << ret;
  return kFailed;
}

int Addr_SoftwareTableRegister::WriteToSoftwareTable(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, DoSoftwareTableKey, "DoSoftwareTableKey");
}

}  // namespace ORVE_MCUC
