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

StatusReading readStatus(std::span<const StatusBlock> blocks, std::span<uint8_t> now) {
  StatusReading reading{now};
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    std::array<uint8_t, kLongestBlock> room{};
    if (blocks[i].length > std::min(now.size(), room.size())) break;
    const auto bytes = std::span(room).first(blocks[i].length);
    if (readFpga(blocks[i].fpgaRegister, bytes) == 0) {
      std::ranges::copy(bytes, now.begin());
      reading.blocksRead |= 1U << i;
    }
    now = now.subspan(blocks[i].length);
  }
  return reading;
}

}  // namespace ORVE_MCUC
