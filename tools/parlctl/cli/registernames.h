// Register addresses in words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace parlctl {

// "backup info + 0x10", "links of ports 0-3"; empty for an address that nobody owns.
std::string registerName(uint32_t address);

// What the map says of the space that owns an address.
struct RegisterSpace {
  uint32_t longest;  // data bytes of one request
  bool readable;
  bool writable;
};
std::optional<RegisterSpace> spaceOf(uint32_t address);

// What reading exactly this does beside answering; empty: nothing that anybody would mind.
std::string_view readEffect(uint32_t address, std::size_t length);

}  // namespace parlctl
