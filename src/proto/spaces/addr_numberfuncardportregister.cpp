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

// The table as it is told: where the FPGA is asked, with what the FPGA holds.
using Table = std::array<uint8_t, VsPartPara.size()>;

int refreshPart(const NumberPart& part, Table& table) {
  return readThrough(*Data_Global::getInstance(), VsPartPara, part.at, part.fpga,
                     std::span(table).subspan(part.at, part.length));
}

int refreshAll(Table& table) {
  for (const NumberPart& part : kNumberParts) {
    if (const int ret = refreshPart(part, table)) return ret;
  }
  return kDone;
}

int refreshPartAt(std::size_t offset, Table& table) {
  for (const NumberPart& part : kNumberParts) {
    if (offset >= part.at && offset - part.at < part.length) return refreshPart(part, table);
  }
  PARLEND_TRACE(kError) << "=== ReadFromNumberFunCardPort ===invalid data.";
  return kDone;
}

int ReadFromNumberFunCardPort(IMD_proto3rd& request) {
  if (!insideTable(request, "ReadFromNumberFunCardPort")) return kBeyondImage;
  const std::size_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const std::size_t length = request.proto.m_usValidDataLength;
  request.proto.m_data.clear();
  Table table{};
  snapshot(*Data_Global::getInstance(), VsPartPara, 0, table);
  if (const int ret = length < kShortRead ? refreshPartAt(offset, table) : refreshAll(table)) {
    PARLEND_TRACE(kError)
        << "=== ReadFromNumberFunCardPort ===Read FPGA NumberFunCardPort Info failed! ret = " << ret;
    return kRefused;
  }
  replyWith(request, std::span(table).subspan(offset, length));
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
