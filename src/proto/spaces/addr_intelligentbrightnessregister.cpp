// Brightness of single ports, sent at once.
#include <algorithm>

#include "calc/brightnesspacket.h"
#include "logwords.h"
#include "maps/fpgamap.h"
#include "mcucutil.h"
#include "proto/spaces/spaces.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr SectionWords kWriting{
    .begin = "============================ Begin Write IntellBright ===========================",
    .finish = "============================ Finish Write IntellBright =========================="};
constexpr FailureWords kPacketWords{"", "write bytes to fpga failed. driverRet = "};
constexpr int kPortPauseMs = 5;

// A brightness, the number of entries, then the entries.
constexpr std::size_t kHead = 3;
constexpr std::size_t kCountAt = 1;
constexpr std::size_t kEntry = 4;
constexpr std::size_t kMaskAt = 2;  // bit p: port p

int selectPort(uint8_t selector) {
  return writeFpga(fpga::kPacketPort, {&selector, 1});
}

int AdjustCurrentGlobalBrightness(uint8_t port, uint8_t brightness) {
  selectPort(static_cast<uint8_t>(port << 1));
  const int result = writeFpga(fpga::kPacket, brightnessPacket(port, brightness), kPacketWords);
  selectPort(0);
  return result == 0 ? kDone : kFailed;
}

void adjustPorts(uint8_t mask, uint8_t brightness) {
  for (uint8_t port = 0; port < 8; ++port) {
    if ((mask >> port & 1) == 0) continue;
    AdjustCurrentGlobalBrightness(port, brightness);
    Delay(kPortPauseMs);
  }
}

int WriteToIntellBrightSentByScreen(IMD_proto3rd& request) {
  LogSection section(kWriting);
  const std::span<const uint8_t> data = request.proto.m_data;
  if ((request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask) != 0 || data.size() <= kHead) return kDone;
  const std::size_t entries = std::min<std::size_t>(le16(data, kCountAt), (data.size() - kHead) / kEntry);
  for (std::size_t i = 0; i < entries; ++i) adjustPorts(data[kHead + i * kEntry + kMaskAt], data[0]);
  return kDone;
}

int ReadFromIntellBrightSentByScreen(IMD_proto3rd&) {
  return kDone;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kIntelligentBrightness>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kIntelligentBrightness>({.read = &ReadFromIntellBrightSentByScreen,
                                                  .write = &WriteToIntellBrightSentByScreen,
                                                  .entered = &logEntry});
  return kSpace;
}

}  // namespace ORVE_MCUC
