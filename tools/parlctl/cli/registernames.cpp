#include "registernames.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "maps/fpgamap.h"
#include "maps/registers.h"

namespace parlctl {

namespace {

using namespace ORVE_MCUC;

template <class Table>
std::string_view find(const Table& table, uint32_t address) {
  for (const NamedRegister& row : table)
    if (row.address == address) return row.name;
  return {};
}

// Registers of links: the first port of each, and how many bits of a byte are ports.
struct LinkRegister {
  uint32_t address;
  unsigned first;
  unsigned portsEach;
};
constexpr std::array kLinkRegisters{
    LinkRegister{reg::ofFeature(fpga::kNetLinkPorts1To4), 0, 4},
    LinkRegister{reg::ofFeature(fpga::kNetLinkPorts5To8), 4, 4},
    LinkRegister{reg::ofFeature(fpga::kNetLinkPorts9To16), 8, 4},
    LinkRegister{reg::ofFeature(fpga::kFiberBelowLink), 0, 8},
    LinkRegister{reg::ofFeature(fpga::kFiberBelowLink + 1), 8, 8},
    LinkRegister{reg::ofFeature(fpga::kFiberBelowLink + 2), 0, 8},
    LinkRegister{reg::ofFeature(fpga::kFiberBelowLink + 3), 8, 8},
};

// A space whose base has no row of its own has one for each command, or shares that of its first base.
uint32_t longestOf(const SpaceRow& space) {
  const OffsetRow& own = space.base == reg::kCommand ? kCommands[0] : space.offset;
  const OffsetRow& row = own.name != nullptr ? own : findSpace(firstBase(space))->offset;
  return static_cast<uint32_t>(row.limits.cmdLenMax);
}

}  // namespace

std::optional<std::vector<unsigned>> linksIn(uint32_t address, std::span<const uint8_t> data) {
  const auto* links = std::ranges::find(kLinkRegisters, address, &LinkRegister::address);
  if (links == kLinkRegisters.end()) return std::nullopt;
  std::vector<unsigned> ports;
  for (unsigned i = 0; i < data.size() * links->portsEach; ++i)
    if ((data[i / links->portsEach] >> (i % links->portsEach) & 1) != 0) ports.push_back(links->first + i);
  return ports;
}

std::optional<RegisterSpace> spaceOf(uint32_t address) {
  const SpaceRow* space = findSpace(reg::routerKey(address));
  if (space == nullptr) return std::nullopt;
  return RegisterSpace{.longest = longestOf(*space),
                       .readable = (space->serves & kMayRead) != 0,
                       .writable = (space->serves & kMayWrite) != 0};
}

std::string_view readEffect(uint32_t address, std::size_t length) {
  return ORVE_MCUC::readEffect(address, length);
}

std::string registerName(uint32_t address) {
  if (const auto name = find(kPushedRegisters, address); !name.empty()) return std::string(name);
  if (const auto name = find(kRegisters, address); !name.empty()) return std::string(name);
  const SpaceRow* space = findSpace(reg::routerKey(address));
  if (space == nullptr) return {};
  std::string text(space->title);
  if (address == space->base) return text;
  std::array<char, 16> offset{};
  std::snprintf(offset.data(), offset.size(), " + 0x%X", address - space->base);
  return text + offset.data();
}

}  // namespace parlctl
