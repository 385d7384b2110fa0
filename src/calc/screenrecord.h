// The configurations in a record, as values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "calc/advmapping.h"
#include "maps/shortcutrecord.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC::shortcut {

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
