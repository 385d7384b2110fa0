// Registers of the test-pattern generator.
#include "driverutil.h"
#include "maps/fpgamap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kGeneratorRegisters = 64;

int ReadScreenPatternGenInfo(IMD_proto3rd& request) {
  const uint32_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint16_t length = request.proto.m_usValidDataLength;
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
  replyWith(request, read);
  return kDone;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kScreenPatternGen>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kScreenPatternGen>(
      {.read = &ReadScreenPatternGenInfo, .write = &queueWrite<ScreenPatternGenKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
