#include "proto/spaces/addr_screenpatterngenregister.h"

#include "driverutil.h"
#include "maps/fpgamap.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{
    offsetRow(reg::kScreenPatternGen, "ScreenPatternGen info", "ScreenPatternGen info register", {0, 2048},
              &Addr_ScreenPatternGenregister::DoScreenPatternGen),
    Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

constexpr uint32_t kGeneratorRegisters = 64;

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_ScreenPatternGenregister::cmd_tblOffset = kRows;

int Addr_ScreenPatternGenregister::DoScreenPatternGen(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadScreenPatternGenInfo, &WriteScreenPatternGenInfo);
}

int Addr_ScreenPatternGenregister::ReadScreenPatternGenInfo(IMD_proto3rd* msgIMD) {
  const uint32_t offset = msgIMD->proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint16_t length = msgIMD->proto.m_usValidDataLength;
  if (offset + length >= kGeneratorRegisters) {
    PARLEND_TRACE(kError) << "=== ReadScreenPatternGenInfo ===Invalid addr+len, return! address = " << offset
                          << "len = " << length;
    return kBeyondImage;
  }
  std::array<uint8_t, kGeneratorRegisters> bytes{};
  const int ret = DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, fpga::kScreenPatternGen + offset,
                                                                  length, bytes.data());
  if (ret < 0) {
    PARLEND_TRACE(kError) << "=== ReadScreenPatternGenInfo ===Read ScreenPatternGenInfo failed! ret = "
                          << ret;
    return kFailed;
  }
  const auto read = std::span<const uint8_t>(bytes).first(length);
  if (!Data_Global::getInstance()->HardwareScreenGenReg.copyFrom(read, offset)) return kBeyondImage;
  replyWith(*msgIMD, read);
  return kDone;
}

int Addr_ScreenPatternGenregister::WriteScreenPatternGenInfo(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, ScreenPatternGenKey, "ScreenPatternGenKey");
}

}  // namespace ORVE_MCUC
