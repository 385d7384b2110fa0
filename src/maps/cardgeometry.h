// Sizes of cards and of the tables that place them: what data and calculations both need.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORVE_MCUC {

inline constexpr unsigned kOutputPorts = 16;
inline constexpr unsigned kMappedPorts = 10;  // of them, those that a screen is cut between
inline constexpr std::size_t kPortTableEntries = 1024;
inline constexpr std::size_t kPortTableSize = 4 * kPortTableEntries;  // an entry: X u16, Y u16, little-endian
inline constexpr std::size_t kPortTablesSize = kMappedPorts * kPortTableSize;

// Pixels of one receiving card.
struct CardSize {
  uint16_t width = 128;
  uint16_t height = 128;
};

}  // namespace ORVE_MCUC
