#include "calc/mapping.h"

#include <algorithm>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

// What a connection mode says of a chain, beside the direction of its lines.
struct ModeTraits {
  bool firstLineReversed;  // the first line runs from right to left, or from bottom to top
  bool linesReversed;      // the lines follow each other from bottom to top, or from right to left
};
constexpr std::array<ModeTraits, kConnectionModes> kModes{{
    {false, false},  // 0: rows from the top left
    {false, false},  // 1: columns from the top left
    {true, false},   // 2: rows from the top right
    {false, true},   // 3: columns from the top right
    {false, true},   // 4: rows from the bottom left
    {true, false},   // 5: columns from the bottom left
    {true, true},    // 6: rows from the bottom right
    {true, true},    // 7: columns from the bottom right
}};

constexpr ModeTraits traitsOf(uint8_t mode) {
  return kModes[mode % kConnectionModes];
}

constexpr uint32_t roundedUp(uint32_t count, uint32_t divisor) {
  return (count + divisor - 1) / divisor;
}

}  // namespace

CardPosition positionOf(const CardChain& chain, uint32_t line, uint32_t card) {
  const ModeTraits traits = traitsOf(chain.mode);
  const bool reversed = traits.firstLineReversed != (line % 2 == 1);
  const uint32_t along = reversed ? chain.lineLength - 1 - card : card;
  const uint32_t across = traits.linesReversed ? chain.lines - 1 - line : line;
  const bool rows = runsAlongRows(chain.mode);
  return {static_cast<uint16_t>((rows ? along : across) * chain.card.width),
          static_cast<uint16_t>((rows ? across : along) * chain.card.height)};
}

void fillPortTable(const CardChain& chain, std::span<uint8_t, kPortTableSize> table) {
  const std::size_t repetitions = repetitionsOf(chain);
  if (repetitions == 0) return;
  ByteWriter once(table);
  forEachCard(chain, [&once](CardPosition position) {
    once.le16(position.x);
    once.le16(position.y);
  });
  const auto first = table.first(once.written());
  for (std::size_t i = 1; i < repetitions; ++i)
    std::copy(first.begin(), first.end(), table.subspan(i * first.size()).begin());
}

bool isValid(const SmartScreen& screen) {
  if (screen.cards() == 0 || screen.cardsPerPort == 0) return false;
  if (screen.card.width == 0 || screen.card.height == 0 || screen.mode >= kConnectionModes) return false;
  return screen.cards() >= screen.cardsPerPort && screen.cards() <= kOutputPorts * screen.cardsPerPort;
}

PortSplit splitOf(const SmartScreen& screen) {
  const uint32_t width = screen.card.width;
  const uint32_t height = screen.card.height;
  const bool rows = runsAlongRows(screen.mode);
  const uint32_t lines = rows ? screen.rows : screen.columns;
  const uint32_t lineLength = rows ? screen.columns : screen.rows;
  PortSplit split;
  split.RowOrColInOnePort = roundedUp(screen.cardsPerPort, lineLength);
  split.CardNumofOneCable = split.RowOrColInOnePort * lineLength;
  split.UsedPortNum = roundedUp(screen.cards(), split.CardNumofOneCable);
  const uint32_t before = split.UsedPortNum - 1;
  split.LastPortRowOrColInOnePort = lines - split.RowOrColInOnePort * before;
  split.LastPortCardNumofOneCable = screen.cards() - split.CardNumofOneCable * before;
  if (rows) {
    split.PortWidth = screen.columns * width;
    split.PortHeight = split.RowOrColInOnePort * height;
    split.PortOffsetY = split.PortHeight;
    split.LastPortHeight = screen.rows * height - split.PortOffsetY * before;
  } else {
    split.PortWidth = split.RowOrColInOnePort * width;
    split.PortHeight = screen.rows * height;
    split.PortOffsetX = split.PortWidth;
    split.LastPortWidth = screen.columns * width - split.PortOffsetX * before;
  }
  return split;
}

uint32_t cardsBehind(const PortSplit& split, unsigned port) {
  return placeOf(split, port) + 1 == split.UsedPortNum ? split.LastPortCardNumofOneCable
                                                       : split.CardNumofOneCable;
}

CardChain chainAt(const SmartScreen& screen, const PortSplit& split, uint32_t place) {
  const bool last = place + 1 == split.UsedPortNum;
  return {screen.mode, last ? split.LastPortRowOrColInOnePort : split.RowOrColInOnePort,
          runsAlongRows(screen.mode) ? screen.columns : screen.rows, screen.card};
}

WindowOffset windowOffset(const SmartScreen& screen, const PortSplit& split, unsigned port) {
  if (split.UsedPortNum < 2 || split.UsedPortNum > kMappedPorts) return {};
  const uint32_t place = placeOf(split, port);
  if (!traitsOf(screen.mode).linesReversed) return {place * split.PortOffsetX, place * split.PortOffsetY};
  // From the far end: the last port lies at 0, and the others behind it.
  if (place + 1 == split.UsedPortNum) return {};
  const uint32_t between = split.UsedPortNum - 2 - place;
  return {split.LastPortWidth + between * split.PortOffsetX,
          split.LastPortHeight + between * split.PortOffsetY};
}

}  // namespace ORVE_MCUC
