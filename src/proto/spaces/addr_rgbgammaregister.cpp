// Gamma tables: reads come from the FPGA, writes go to flash.
#include "maps/gammamap.h"
#include "proto/spaces/spaces.h"

namespace ORVE_MCUC {
namespace {

// Where a gamma register lies on the FPGA bus, and what its log lines call it. No name: nowhere.
struct Place {
  uint32_t fpga = 0;
  const char* depth = nullptr;
  const char* colour = nullptr;
};

Place placeOf(uint32_t address, uint32_t length) {
  if (const auto* table = findGammaTable(address)) {
    return {table->fpga + (address & reg::kOffsetMask), table->depth, table->colour};
  }
  if (const auto* value = findGammaValue(address, length)) return {value->fpga, value->depth, nullptr};
  return {};
}

void logFailedRead(const Place& place, int ret) {
  const char* what = place.colour != nullptr ? place.colour : "";
  const char* kind = place.colour != nullptr ? "Gamma" : "GammaVal";
  PARLEND_TRACE(kError) << "=== Read_" << place.depth << "_" << what << kind << "Info ===Read " << place.depth
                        << "_" << what << kind << " Info failed! ret = " << ret;
}

int ReadRGBGammatable(IMD_proto3rd& request) {
  const uint16_t length = request.proto.m_usValidDataLength;
  const Place place = placeOf(request.proto.m_uiRegisterUnitAddress & kGammaRegisterMask, length);
  if (place.depth == nullptr) {
    request.proto.m_data.assign(length, 0);
    return kDone;
  }
  const int ret = replyFromFpga(request, place.fpga);
  if (ret == 0) return kDone;
  logFailedRead(place, ret);
  return kRefused;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kRGBGamma>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kRGBGamma>({.read = &ReadRGBGammatable, .write = &queueWrite<SenderRGBGammaKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
