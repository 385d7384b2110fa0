#include "proto/store/statuscheck.h"

#include "mcuctrace.h"
#include "proto/store/deviceaccess.h"

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
    std::array<uint8_t, kLongestBlock> room{};
    if (block.length > now.size() || block.length > room.size()) return false;
    const auto bytes = std::span(room).first(block.length);
    if (readFpga(block.fpgaRegister, bytes) == 0) {
      std::ranges::copy(bytes, now.begin());
    } else {
      complete = false;
    }
    now = now.subspan(block.length);
  }
  return complete;
}

}  // namespace ORVE_MCUC
