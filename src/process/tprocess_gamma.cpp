// Gamma tables are stored segment by segment; the segment that ends a table makes it valid by a tag, and the
// last table of a bank loads the FPGA.
#include <algorithm>

#include "maps/gammamap.h"
#include "mcuctrace.h"
#include "process/colour.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr auto& kValidTag = Data_Global::IsNewFlashTag;

// Writes into flash; a failure is logged under the name of what was written.
void writeGamma(uint32_t address, std::span<const uint8_t> bytes, const char* depth, const char* colour,
                const char* what) {
  const int ret = writeFlash(address, bytes);
  if (ret == 0) return;
  PARLEND_TRACE(kError) << "=== Write_" << depth << "_" << colour << "GammaInfo ===" << depth << "_" << colour
                        << what << " to flash failed. ret = " << ret;
}

void storeSegment(const GammaTable& table, uint32_t address, std::span<const uint8_t> data) {
  const auto room = static_cast<std::size_t>(table.end() - address);
  const auto inTable = data.first(std::min(data.size(), room));
  writeGamma(table.flash + (address - table.first), inTable, table.depth, table.colour, "Gamma info");
  if (inTable.size() < data.size()) {
    PARLEND_TRACE(kError) << "=== Sprocess_SenderRGBGamma ===segment at " << CTrace::hex << address << " of "
                          << data.size() << " bytes runs past its table, stored " << inTable.size();
  } else if (data.size() == room) {
    writeGamma(table.tag, kValidTag, table.depth, table.colour, "Gamma tag");
    if (table.completes != 0) SendGammaToFpga(table.completes);
  }
}

}  // namespace

int Tprocess::Sprocess_SenderRGBGamma(int lenth, char* data) {
  return handlePenetrate<SenderRGBGammaKey>(lenth, data, [](const PenetrateInfo& info) {
    const uint32_t address = info.Register & kGammaRegisterMask;
    if (const auto* table = findGammaTable(address)) {
      storeSegment(*table, address, info.data);
    } else if (const auto* value = findGammaValue(address, info.length)) {
      writeGamma(value->flash, info.data.first(1), value->depth, "", "Gamma value");
    }
  });
}

}  // namespace ORVE_MCUC
