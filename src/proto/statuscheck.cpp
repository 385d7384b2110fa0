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
    if (block.length > now.size()) return;
    DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, block.fpgaRegister,
                                                    static_cast<unsigned int>(block.length), now.data());
    now = now.subspan(block.length);
  }
}

}  // namespace ORVE_MCUC
