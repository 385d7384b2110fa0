#include "registernames.h"

#include <array>
#include <cstdio>

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

// A space whose base has no row of its own has one for each command, or shares that of its first base.
uint32_t longestOf(const SpaceRow& space) {
  const OffsetRow& own = space.base == reg::kCommand ? kCommands[0] : space.offset;
  const OffsetRow& row = own.name != nullptr ? own : findSpace(firstBase(space))->offset;
  return static_cast<uint32_t>(row.limits.cmdLenMax);
}

}  // namespace

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
