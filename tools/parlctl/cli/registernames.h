// Register addresses in words.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace parlctl {

// "backup info + 0x10", "links of ports 0-3"; empty for an address that nobody owns.
std::string registerName(uint32_t address);

// The ports, from 0, whose links are up, when these bytes are what a register of links holds.
std::optional<std::vector<unsigned>> linksIn(uint32_t address, std::span<const uint8_t> data);

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
