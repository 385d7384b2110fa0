// Gamma tables are stored segment by segment; the segment that ends a table makes it valid by a tag.
#include <algorithm>
#include <array>

#include "driverutil.h"
#include "mcuctrace.h"
#include "process/tprocess.h"
#include "proto/gammamap.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array<uint8_t, 4> kValidTag{0x39, 0xF6, 0xA5, 0x5A};

void storeSegment(const GammaTable& table, uint32_t address, std::span<const uint8_t> data) {
  const auto room = static_cast<std::size_t>(table.end() - address);
  const auto inTable = data.first(std::min(data.size(), room));
  DriverUtil& driver = *DriverUtil::getInstance();
  const int ret = driver.WriteDataToFlash(table.flash + (address - table.first),
                                          static_cast<unsigned int>(inTable.size()), inTable.data());
  if (ret != 0) {
    PARLEND_TRACE(kError) << "=== Write_" << table.depth << "_" << table.colour
                          << "GammaInfo ===" << table.depth << "_" << table.colour
                          << "Gamma info to flash failed. ret = " << ret;
  }
  if (inTable.size() < data.size()) {
    PARLEND_TRACE(kError) << "=== Sprocess_SenderRGBGamma ===segment at " << CTrace::hex << address << " of "
                          << static_cast<int>(data.size()) << " bytes runs past its table, stored "
                          << static_cast<int>(inTable.size());
  } else if (data.size() == room) {
    driver.WriteDataToFlash(table.tag, kValidTag.size(), kValidTag.data());
  }
}

}  // namespace

int Tprocess::Sprocess_SenderRGBGamma(int lenth, char* data) {
  return handlePenetrate({"Sprocess_SenderRGBGamma", "SenderRGBGammaKey"}, lenth, data,
                         [](const PenetrateInfo& info) {
                           const uint32_t address = info.Register & kGammaRegisterMask;
                           if (const auto* table = findGammaTable(address)) {
                             storeSegment(*table, address, info.data);
                           } else if (const auto* value = findGammaValue(address, info.length)) {
                             DriverUtil::getInstance()->WriteDataToFlash(value->flash, 1, info.data.data());
                           }
                         });
}

}  // namespace ORVE_MCUC
