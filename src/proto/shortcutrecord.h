// The record of a screen configuration as peers write it and flash keeps it: offsets in the shortcut
// configuration space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "mcucdatablock.h"
#include "proto/advmapping.h"

namespace ORVE_MCUC::shortcut {

inline constexpr std::size_t kStatusAt = 0x00;  // what configured the screen last
inline constexpr std::size_t kModeAt = 0x11;
inline constexpr std::size_t kRowsAt = 0x16;
inline constexpr std::size_t kColumnsAt = 0x17;
inline constexpr std::size_t kCardsPerPortAt = 0x18;  // u16
inline constexpr std::size_t kRecordSize = 32;
inline constexpr std::size_t kUsedSize = 28;  // of the record

// What the status byte says.
inline constexpr uint8_t kSmart = 0xA8;
inline constexpr uint8_t kAdvanced = 0xB8;
inline constexpr uint8_t kByTables = 0xC8;

// Advanced configuration: a block for each output port.
inline constexpr std::size_t kPortsAt = 0x50;
inline constexpr std::size_t kPortSize = 0x40;
inline constexpr std::size_t kPortsLast = 0x41C;
inline constexpr std::size_t kPortModeAt = 1;
inline constexpr std::size_t kPortRowsAt = 6;
inline constexpr std::size_t kPortColumnsAt = 7;
inline constexpr std::size_t kPortXAt = 9;     // u16
inline constexpr std::size_t kPortYAt = 0x0B;  // u16

// The smart configuration of a record; the card size is not in it.
constexpr SmartScreen smartScreenOf(std::span<const uint8_t, kUsedSize> record) {
  SmartScreen screen;
  screen.rows = record[kRowsAt];
  screen.columns = record[kColumnsAt];
  screen.cardsPerPort = le16(record, kCardsPerPortAt);
  screen.mode = record[kModeAt];
  return screen;
}

// The same into a record; rows and columns up to 255.
constexpr void putSmartScreen(std::span<uint8_t, kUsedSize> record, const SmartScreen& screen) {
  record[kRowsAt] = static_cast<uint8_t>(screen.rows);
  record[kColumnsAt] = static_cast<uint8_t>(screen.columns);
  putLe16(record, kCardsPerPortAt, screen.cardsPerPort);
  record[kModeAt] = screen.mode;
}

// A port's block; a port without rows or columns counts as one of 1 x 1.
constexpr AdvancedPort advancedPortOf(std::span<const uint8_t, kPortSize> block) {
  const auto atLeastOne = [](uint8_t count) -> uint16_t { return count == 0 ? 1 : count; };
  return {block[kPortModeAt], atLeastOne(block[kPortRowsAt]), atLeastOne(block[kPortColumnsAt]),
          le16(block, kPortXAt), le16(block, kPortYAt)};
}

}  // namespace ORVE_MCUC::shortcut
