#pragma once

#include <cstddef>
#include <cstdint>

namespace bench {

// The frame's checksum as a loop over bytes; built with -O2 -fno-tree-vectorize.
uint16_t byteLoopChecksum(const unsigned char* bytes, std::size_t count);

}  // namespace bench
