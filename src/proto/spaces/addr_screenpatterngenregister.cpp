// Registers of the test-pattern generator.
#include "maps/fpgamap.h"
#include "maps/patternmap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

int ReadScreenPatternGenInfo(IMD_proto3rd& request) {
  const uint32_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint16_t length = request.proto.m_usValidDataLength;
  if (offset + length >= pattern::kImageSize) {
    PARLEND_TRACE(kError) << "=== ReadScreenPatternGenInfo ===Invalid addr+len, return! address = " << offset
                          << "len = " << length;
    return kBeyondImage;
  }
  std::array<uint8_t, pattern::kImageSize> bytes{};
  const auto read = std::span(bytes).first(length);
  Data_Global& global = *Data_Global::getInstance();
  constexpr FailureWords kWords{"ReadScreenPatternGenInfo", "Read ScreenPatternGenInfo failed! ret = "};
  if (readThrough(global, global.HardwareScreenGenReg, offset, fpga::kScreenPatternGen + offset, read,
                  kWords) != 0)
    return kFailed;
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
