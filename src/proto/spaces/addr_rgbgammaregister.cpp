#include "proto/spaces/addr_rgbgammaregister.h"

#include "driverutil.h"
#include "maps/gammamap.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{offsetRow(reg::kRGBGamma, "RGBGamma info", "RGBGamma info register", {1, 1024},
                                     &Addr_RGBGammaRegister::DoRGBGammatable),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

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

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_RGBGammaRegister::cmd_tblOffset = kRows;

int Addr_RGBGammaRegister::DoRGBGammatable(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadRGBGammatable, &WriteRGBGammatable);
}

int Addr_RGBGammaRegister::ReadRGBGammatable(IMD_proto3rd* msgIMD) {
  const uint16_t length = msgIMD->proto.m_usValidDataLength;
  const Place place = placeOf(msgIMD->proto.m_uiRegisterUnitAddress & kGammaRegisterMask, length);
  auto& data = msgIMD->proto.m_data;
  data.assign(length, 0);
  if (place.depth == nullptr) return kDone;
  const int ret = DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, place.fpga, length, data.data());
  if (ret >= 0) return kDone;
  logFailedRead(place, ret);
  data.clear();
  return kRefused;
}

int Addr_RGBGammaRegister::WriteRGBGammatable(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, SenderRGBGammaKey, "SenderRGBGammaKey");
}

}  // namespace ORVE_MCUC
