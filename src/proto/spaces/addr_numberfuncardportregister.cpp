// How many cards lie behind the output ports, as the FPGA has it.
#include "logwords.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kShortRead = 3;  // a shorter read asks the FPGA for one part only

bool insideTable(const IMD_proto3rd& request, const char* operation) {
  const std::size_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const std::size_t length =
      std::max<std::size_t>(request.proto.m_usValidDataLength, request.proto.m_data.size());
  if (fits(VsPartPara.size(), offset, length)) return true;
  PARLEND_TRACE(kError) << "=== " << operation << " ===Invalid addr+len, return! address = " << CTrace::hex
                        << offset << " " << CTrace::hex << length;
  return false;
}

int refreshPart(const NumberPart& part) {
  std::array<uint8_t, VsPartPara.size()> room{};
  return readThrough(*Data_Global::getInstance(), VsPartPara, part.at, part.fpga,
                     std::span(room).first(part.length));
}

int refreshAll() {
  for (const NumberPart& part : kNumberParts) {
    if (const int ret = refreshPart(part)) return ret;
  }
  return kDone;
}

int refreshPartAt(std::size_t offset) {
  for (const NumberPart& part : kNumberParts) {
    if (offset >= part.at && offset - part.at < part.length) return refreshPart(part);
  }
  PARLEND_TRACE(kError) << "=== ReadFromNumberFunCardPort ===invalid data.";
  return kDone;
}

int ReadFromNumberFunCardPort(IMD_proto3rd& request) {
  if (!insideTable(request, "ReadFromNumberFunCardPort")) return kBeyondImage;
  const std::size_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const std::size_t length = request.proto.m_usValidDataLength;
  request.proto.m_data.clear();
  if (const int ret = length < kShortRead ? refreshPartAt(offset) : refreshAll()) {
    PARLEND_TRACE(kError)
        << "=== ReadFromNumberFunCardPort ===Read FPGA NumberFunCardPort Info failed! ret = " << ret;
    return kRefused;
  }
  std::array<uint8_t, VsPartPara.size()> room{};
  const auto bytes = std::span(room).first(length);
  snapshot(*Data_Global::getInstance(), VsPartPara, offset, bytes);
  replyWith(request, bytes);
  return kDone;
}

int WriteToNumberFunCardPort(IMD_proto3rd& request) {
  if (!insideTable(request, "WriteToNumberFunCardPort")) return kBeyondImage;
  return queueWrite<DoNumberFunCardPortKey>(request);
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kFunCardPortNumber>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kFunCardPortNumber>(
      {.read = &ReadFromNumberFunCardPort, .write = &WriteToNumberFunCardPort, .entered = &logEntry});
  return kSpace;
}

}  // namespace ORVE_MCUC
