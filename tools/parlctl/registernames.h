// Register addresses in words.
#pragma once

#include <cstdint>
#include <string>

namespace parlctl {

// "backup info + 0x10", "links of ports 1-4"; empty for an address that nobody owns.
std::string registerName(uint32_t address);

}  // namespace parlctl
