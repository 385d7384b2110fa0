#include "proto/store/statuscheck.h"

#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {

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
