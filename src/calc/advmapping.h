// The advanced screen configuration: every output port has its own block of cards at a place of its own.
// Values in, values out: no hardware, no store, any thread.
#pragma once

#include <array>
#include <cstdint>

#include "calc/mapping.h"

namespace ORVE_MCUC {

inline constexpr uint32_t kMostCardsOfPort = 512;
inline constexpr uint32_t kMostCards = 2048;  // of all ports together

// The block of cards behind one port.
struct AdvancedPort {
  uint8_t mode = 0;
  uint16_t rows = 0;     // of cards
  uint16_t columns = 0;  // of cards
  uint16_t x = 0;        // upper left pixel on the screen
  uint16_t y = 0;

  constexpr uint32_t cards() const { return uint32_t{rows} * columns; }
  constexpr CardChain chain(CardSize card) const { return chainOf(mode, rows, columns, card); }
};
using AdvancedScreen = std::array<AdvancedPort, kMappedPorts>;

// Whether the ports can be calculated: at most 512 cards behind a port, 2048 in all, and modes that exist.
// total: the cards counted up to the first port that is refused.
struct AdvancedVerdict {
  bool valid = true;
  bool portRefused = false;
  uint32_t total = 0;
};
AdvancedVerdict checkAdvanced(const AdvancedScreen& screen);

struct PixelExtent {
  uint32_t width = 0;
  uint32_t height = 0;
};
constexpr PixelExtent blockOf(const AdvancedPort& port, CardSize card) {
  return {uint32_t{port.columns} * card.width, uint32_t{port.rows} * card.height};
}
// Largest right and bottom edge of all blocks: the extent of the screen. Edges have 16 bits, as the FPGA has
// for them: one beyond counts as what is left of it.
PixelExtent screenExtent(const AdvancedScreen& screen, CardSize card);
// Largest width and height of a block.
PixelExtent largestBlock(const AdvancedScreen& screen, CardSize card);

}  // namespace ORVE_MCUC
