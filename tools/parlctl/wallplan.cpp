#include "wallplan.h"

#include <algorithm>

#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;

constexpr uint32_t kMostPixels = 0xFFFF;  // positions and sizes have 16 bits

std::string wallOf(const SmartScreen& screen) {
  return countText(screen.cards(), "card") + " (" + sizeText({screen.rows, screen.columns}) + ")";
}

// The rules of map::isValid, in words.
std::string refusal(const SmartScreen& screen) {
  if (map::isValid(screen)) return {};
  if (screen.cards() == 0 || screen.cardsPerPort == 0)
    return "rows, columns and cards per port must not be zero: " + sizeText({screen.rows, screen.columns}) +
           " with " + countText(screen.cardsPerPort, "card") + " per port";
  if (screen.mode >= map::kConnectionModes)
    return "there is no connection mode " + std::to_string(screen.mode) + ": they go from 0 to 7";
  if (screen.card.width == 0 || screen.card.height == 0)
    return "a card of " + sizeText({screen.card.width, screen.card.height}) + " pixels has no picture";
  if (screen.cards() < screen.cardsPerPort)
    return "the wall has " + wallOf(screen) + ", fewer than the " + std::to_string(screen.cardsPerPort) +
           " that one port is to carry";
  return "the wall has " + wallOf(screen) + ", more than 16 ports carry with " +
         countText(screen.cardsPerPort, "card") + " each";
}

// What the daemon accepts and does not map all the same.
std::string limit(const SmartScreen& screen) {
  const map::PortSplit split = map::splitOf(screen);
  if (split.UsedPortNum > map::kMappedPorts)
    return "the wall needs " + std::to_string(split.UsedPortNum) + " ports with " +
           countText(split.CardNumofOneCable, "card") + " each (whole lines), and there are " +
           std::to_string(map::kMappedPorts);
  if (split.CardNumofOneCable > map::kPortTableEntries)
    return "a port would carry " + std::to_string(split.CardNumofOneCable) +
           " cards (whole lines), and its table holds " + std::to_string(map::kPortTableEntries);
  const PixelSize size{uint32_t{screen.columns} * screen.card.width,
                       uint32_t{screen.rows} * screen.card.height};
  if (std::max({size.width, size.height, split.PortWidth, split.PortHeight}) > kMostPixels)
    return "the wall has " + sizeText(size) + " pixels, and neither side can have more than " +
           std::to_string(kMostPixels);
  return {};
}

std::vector<Pixel> absolute(const map::CardChain& chain, Pixel offset) {
  std::vector<Pixel> cards;
  cards.reserve(chain.cards());
  map::forEachCard(chain, [&](map::CardPosition position) {
    cards.push_back({offset.x + position.x, offset.y + position.y});
  });
  return cards;
}

}  // namespace

std::string wallProblem(const SmartScreen& screen) {
  const std::string refused = refusal(screen);
  return refused.empty() ? limit(screen) : refused;
}

WallPlan::WallPlan(const SmartScreen& screen) : screen_(screen) {
  if (const std::string problem = wallProblem(screen); !problem.empty())
    throw peer::Error(peer::Failure::Usage, problem);
  split_ = map::splitOf(screen);
  for (unsigned number = 0; number < map::kMappedPorts; ++number) {
    const uint32_t place = map::placeOf(split_, number);
    const auto [x, y] = map::windowOffset(screen, split_, number);
    WallPort& port = ports_.emplace_back(WallPort{.port = number,
                                                  .window = {split_.PortWidth, split_.PortHeight},
                                                  .offset = {x, y},
                                                  .duplicateOf = {},
                                                  .duplicates = {},
                                                  .chain = {}});
    port.chain = absolute(map::chainAt(screen, split_, place), port.offset);
    if (place == number) continue;
    port.duplicateOf = place;
    ports_[place].duplicates.push_back(number);
  }
}

PixelSize WallPlan::size() const {
  return {uint32_t{screen_.columns} * screen_.card.width, uint32_t{screen_.rows} * screen_.card.height};
}

CardBlock WallPlan::blockOf(const WallPort& port) const {
  Pixel first = port.chain.front();
  Pixel last = first;
  for (const Pixel card : port.chain) {
    first = {std::min(first.x, card.x), std::min(first.y, card.y)};
    last = {std::max(last.x, card.x), std::max(last.y, card.y)};
  }
  return {rowOf(first), columnOf(first), rowOf(last) - rowOf(first) + 1,
          columnOf(last) - columnOf(first) + 1};
}

uint16_t cardsForPorts(SmartScreen screen, unsigned ports) {
  const uint16_t line = map::runsAlongRows(screen.mode) ? screen.columns : screen.rows;
  screen.cardsPerPort = line;
  while (map::splitOf(screen).UsedPortNum > ports) screen.cardsPerPort += line;
  return screen.cardsPerPort;
}

std::string pairText(Pixel at) {
  return std::to_string(at.x) + ", " + std::to_string(at.y);
}

std::string sizeText(PixelSize size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

std::string listText(std::span<const unsigned> numbers) {
  std::string text;
  for (const unsigned value : numbers) text += (text.empty() ? "" : ", ") + std::to_string(value);
  return text;
}

std::string modeText(uint8_t mode) {
  std::string text = std::to_string(mode);
  if (mode < kModeNames.size()) text += ' ' + std::string(kModeNames[mode]);
  return text;
}

}  // namespace parlctl
