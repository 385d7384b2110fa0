#include "proto/statuscheck.h"

#include "driverutil.h"
#include "mcuctrace.h"

namespace ORVE_MCUC {

void logChange(const StatusWords& words, std::span<const uint8_t> now) {
  if (words.afterValue == nullptr) {
    PARLEND_TRACE(kInfo) << words.begin;
  } else {
    PARLEND_TRACE(kInfo) << words.begin << now.front() << words.afterValue;
  }
}

void logTold(const StatusWords& words) {
  PARLEND_TRACE(kInfo) << words.finish;
}

void readStatus(std::span<const StatusBlock> blocks, std::span<uint8_t> now) {
  for (const StatusBlock& block : blocks) {
    std::array<uint8_t, kLongestBlock> bytes{};
    if (block.length > now.size() || block.length > bytes.size()) return;
    if (DriverUtil::getInstance()->FPGAC5_ReadDataBlock(
            0, 0, block.fpgaRegister, static_cast<unsigned int>(block.length), bytes.data()) == 0) {
      std::copy_n(bytes.begin(), block.length, now.begin());
    }
    now = now.subspan(block.length);
  }
}

}  // namespace ORVE_MCUC
