#include "proto/store/statuscheck.h"

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

bool readStatus(std::span<const StatusBlock> blocks, std::span<uint8_t> now) {
  bool complete = true;
  for (const StatusBlock& block : blocks) {
    std::array<uint8_t, kLongestBlock> bytes{};
    if (block.length > now.size() || block.length > bytes.size()) return false;
    if (DriverUtil::getInstance()->FPGAC5_ReadDataBlock(
            0, 0, block.fpgaRegister, static_cast<unsigned int>(block.length), bytes.data()) == 0) {
      std::copy_n(bytes.begin(), block.length, now.begin());
    } else {
      complete = false;
    }
    now = now.subspan(block.length);
  }
  return complete;
}

}  // namespace ORVE_MCUC
