// Positions of the receiving cards behind the output ports, as the FPGA has them.
#include "logwords.h"
#include "proto/spaces/ratetest.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kOffsetMask20 = 0x000FFFFF;
constexpr uint32_t kReadTestAt = reg::kReadRateTest - reg::kScanBoardPosition;
constexpr uint32_t kWriteTestAt = reg::kWriteRateTest - reg::kScanBoardPosition;
constexpr SectionWords kReading{
    .begin = "============================ Begin Read Posi Info ===============================",
    .finish = "============================ Finish Read Posi Info =============================="};

constexpr bool isRateTest(uint32_t offset) {
  return offset == kReadTestAt || offset == kWriteTestAt;
}

bool isPossible(uint32_t offset, std::size_t length) {
  return fits(PortsTopoPara.size(), offset, length) && (!isRateTest(offset) || length <= kMostRateTestBytes);
}

bool runRateTest(uint32_t offset, std::size_t length) {
  if (length == 0 || !isRateTest(offset)) return true;
  return offset == kWriteTestAt ? runWriteRateTest(length) : runReadRateTest(length);
}

int ReadFromPosNetPort(IMD_proto3rd& request) {
  LogSection section(kReading);
  const uint32_t offset = request.proto.m_uiRegisterUnitAddress & kOffsetMask20;
  const std::size_t length = request.proto.m_usValidDataLength;
  if (!isPossible(offset, length)) {
    PARLEND_TRACE(kError) << "=== ReadFromPosNetPort ===Invalid addr+len, return! address = " << CTrace::hex
                          << offset << "len = " << CTrace::hex << length;
    section.abandon();
    return kBeyondImage;
  }
  const bool tested = runRateTest(offset, length);
  auto& data = request.proto.m_data;
  data.assign(length, 0);
  const Data_Global& store = *Data_Global::getInstance();
  const int ret = readThrough(store, PortsTopoPara, offset, fpga::kPositionTables + offset, data,
                              {"ReadFromPosNetPort", "Read FPGA Posi Info failed! ret = "});
  if (ret == 0) return tested ? kDone : kFailed;
  data.clear();
  section.abandon();
  return kFailed;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kScanBoardPosition>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kScanBoardPosition>(
      {.read = &ReadFromPosNetPort, .write = &queueWrite<PositionNetPortKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
