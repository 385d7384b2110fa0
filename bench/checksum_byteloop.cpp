#include "checksum_byteloop.h"

namespace bench {

uint16_t byteLoopChecksum(const unsigned char* bytes, std::size_t count) {
  uint32_t sum = 0x5555;
  for (std::size_t i = 0; i < count; ++i) sum += bytes[i];
  return static_cast<uint16_t>(sum);
}

}  // namespace bench
