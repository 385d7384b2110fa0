// How the smart screen configuration cuts a screen between the output ports, and where each card of a chain
// lies. Values in, values out: no hardware, no store, any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "maps/cardgeometry.h"

namespace ORVE_MCUC {

inline constexpr uint8_t kConnectionModes = 8;

// Cards chained by one cable. Line after line is run through in serpentines: rows in an even connection mode,
// columns in an odd one. Modes 0 and 1 begin top left, 2 and 3 top right, 4 and 5 bottom left, 6 and 7 bottom
// right.
struct CardChain {
  uint8_t mode = 0;
  uint32_t lines = 0;
  uint32_t lineLength = 0;  // cards of a line
  CardSize card;

  constexpr uint32_t cards() const { return lines * lineLength; }
};

constexpr bool runsAlongRows(uint8_t mode) {
  return mode % 2 == 0;
}
// The chain of a block of rows x columns cards.
constexpr CardChain chainOf(uint8_t mode, uint32_t rows, uint32_t columns, CardSize card) {
  return runsAlongRows(mode) ? CardChain{mode, rows, columns, card} : CardChain{mode, columns, rows, card};
}

// Upper left pixel of a card, from the upper left of its port's window. Kept to 16 bits, as the tables are.
struct CardPosition {
  uint16_t x = 0;
  uint16_t y = 0;
  bool operator==(const CardPosition&) const = default;
};
CardPosition positionOf(const CardChain& chain, uint32_t line, uint32_t card);
// Calls use(position) for each card in the order of the cable.
template <class Use>
void forEachCard(const CardChain& chain, Use use) {
  for (uint32_t line = 0; line < chain.lines; ++line) {
    for (uint32_t card = 0; card < chain.lineLength; ++card) use(positionOf(chain, line, card));
  }
}

// Times that a chain fits into a port table as a whole; 0 for a chain that is empty or longer than the table.
constexpr std::size_t repetitionsOf(const CardChain& chain) {
  return chain.cards() == 0 ? 0 : kPortTableEntries / chain.cards();
}
// Writes the cards' positions in the order of the chain, repeated as often as they fit as a whole; the rest
// of the table keeps what it holds.
void fillPortTable(const CardChain& chain, std::span<uint8_t, kPortTableSize> table);

// What a smart configuration says of a screen.
struct SmartScreen {
  uint16_t rows = 0;     // of cards
  uint16_t columns = 0;  // of cards
  uint16_t cardsPerPort = 0;
  uint8_t mode = 0;
  CardSize card;

  constexpr uint32_t cards() const { return uint32_t{rows} * columns; }
};

// Whether the screen can be calculated: nothing is zero, the mode exists, and the cards are no fewer than one
// port takes and no more than sixteen ports take.
bool isValid(const SmartScreen& screen);

// How a screen is cut between its ports. A port takes whole lines; the last one takes what is left of them.
struct PortSplit {
  uint32_t RowOrColInOnePort = 0;  // lines of a port
  uint32_t CardNumofOneCable = 0;  // cards of a port
  uint32_t UsedPortNum = 0;
  uint32_t LastPortRowOrColInOnePort = 0;
  uint32_t LastPortCardNumofOneCable = 0;
  uint32_t PortWidth = 0;  // pixels, as all that follows
  uint32_t PortHeight = 0;
  uint32_t PortOffsetX = 0;  // from one port to the next
  uint32_t PortOffsetY = 0;
  uint32_t LastPortWidth = 0;   // of column modes
  uint32_t LastPortHeight = 0;  // of row modes
};
// Needs a screen without a zero.
PortSplit splitOf(const SmartScreen& screen);

// The place among the used ports that port 0..9 has: ports beyond the used ones repeat them.
constexpr uint32_t placeOf(const PortSplit& split, unsigned port) {
  return split.UsedPortNum == 0 ? 0 : port % split.UsedPortNum;
}
// Cards behind a port, duplicates included.
uint32_t cardsBehind(const PortSplit& split, unsigned port);
// Chain of the port in a place.
CardChain chainAt(const SmartScreen& screen, const PortSplit& split, uint32_t place);

// Upper left pixel of port 0..9's window on the screen: 0, 0 for all when there are more places than ports.
struct WindowOffset {
  uint32_t x = 0;
  uint32_t y = 0;
};
WindowOffset windowOffset(const SmartScreen& screen, const PortSplit& split, unsigned port);

}  // namespace ORVE_MCUC
