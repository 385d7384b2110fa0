// The register by which peers select the input that the screen shows, and whose EDID they read and write.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace ORVE_MCUC::input {

inline constexpr uint16_t kSourceAt = 0x1A5;  // of the feature parameters

// Codes of the sources that have a group, by group.
inline constexpr std::array<uint8_t, 3> kSourceOfGroup{0x61, 0x62, 0x50};

constexpr std::optional<int> groupOf(uint8_t source) {
  for (std::size_t group = 0; group < kSourceOfGroup.size(); ++group) {
    if (kSourceOfGroup[group] == source) return static_cast<int>(group);
  }
  return std::nullopt;
}
static_assert(groupOf(98) == 1 && !groupOf(0));

}  // namespace ORVE_MCUC::input
