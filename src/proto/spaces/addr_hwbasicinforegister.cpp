#include "proto/spaces/addr_hwbasicinforegister.h"

#include "driverutil.h"
#include "maps/flashmap.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

// Row of the diagnostics only: this space checks its accesses by its page.
constexpr std::array kRows{offsetRow(reg::kHwBasicInfo, "HwInfo", "Hardware Basic Infomation", {2, 512},
                                     &Addr_HwBasicInfoRegister::REG_HwBasicInfomation),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

constexpr uint32_t kPageSize = 256;
constexpr uint32_t kModelIdAt = 2;
constexpr uint32_t kSerialNumberAt = 22;

bool insidePage(const IMD_proto3rd& request, const char* operation) {
  const uint32_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint32_t length = request.proto.m_usValidDataLength;
  if (offset + length <= kPageSize) return true;
  PARLEND_TRACE(kError) << "=== " << operation << " ===Invalid addr+len, return! address = " << CTrace::hex
                        << offset << " len = " << length;
  return false;
}

constexpr bool covers(uint32_t offset, uint32_t length, uint32_t from, uint32_t count) {
  return offset <= from && from + count <= offset + length;
}

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_HwBasicInfoRegister::cmd_tblOffset = kRows;

int Addr_HwBasicInfoRegister::Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int) {
  return REG_HwBasicInfomation(msgIMD, tbl, 0);
}

int Addr_HwBasicInfoRegister::REG_HwBasicInfomation(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  if (msgIMD == nullptr) {
    PARLEND_TRACE(kInfo) << "***************************REG_HwBasicInfomation**************\n";
  }
  return readOrWrite(msgIMD, &ReadHwBasicInfomation, &WriteHwBasicInfomation, kDone);
}

int Addr_HwBasicInfoRegister::ReadHwBasicInfomation(IMD_proto3rd* msgIMD) {
  if (!insidePage(*msgIMD, "ReadHwBasicInfomation")) return kBeyondImage;
  const uint32_t offset = msgIMD->proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint32_t length = msgIMD->proto.m_usValidDataLength;
  std::array<uint8_t, kPageSize> page{};
  const int ret = DriverUtil::getInstance()->ReadBytesFromFlash(1, flash::kBasicHardwarePage + offset, length,
                                                                page.data() + offset);
  Data_Global& data = *Data_Global::getInstance();
  if (covers(offset, length, kModelIdAt, 2)) data.GetEnvModelIDPara(page.data() + kModelIdAt);
  if (covers(offset, length, kSerialNumberAt, 8)) data.GetEnvSNPara(page.data() + kSerialNumberAt);
  replyWith(*msgIMD, std::span<const uint8_t>(page).subspan(offset, length));
  return ret == 0 ? kDone : kFailed;
}

int Addr_HwBasicInfoRegister::WriteHwBasicInfomation(IMD_proto3rd* msgIMD) {
  if (!insidePage(*msgIMD, "WriteHwBasicInfomation")) return kBeyondImage;
  return queueWrite(msgIMD, HwBasicinfoKey, "HwBasicinfoKey");
}

}  // namespace ORVE_MCUC
