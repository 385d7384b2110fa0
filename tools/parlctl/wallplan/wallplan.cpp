#include "wallplan.h"

#include <algorithm>
#include <iterator>

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

uint32_t roundedUpToEven(uint32_t value) {
  return (value + 1) & ~1U;
}

// A port that an advanced configuration does not speak of counts as one card at the upper left: it is not in
// use, if another port has that corner.
bool isFiller(const AdvancedScreen& blocks, unsigned number) {
  const auto atCorner = [](const map::AdvancedPort& port) { return port.x == 0 && port.y == 0; };
  const map::AdvancedPort& port = blocks[number];
  if (port.cards() != 1 || !atCorner(port) || port.mode != 0) return false;
  for (unsigned other = 0; other < blocks.size(); ++other)
    if (other != number && atCorner(blocks[other]) && (blocks[other].cards() > 1 || other < number))
      return true;
  return false;
}

}  // namespace

std::string wallProblem(const SmartScreen& screen) {
  const std::string refused = refusal(screen);
  return refused.empty() ? limit(screen) : refused;
}

std::string wallProblem(const AdvancedScreen& blocks, CardSize card) {
  for (unsigned port = 0; port < blocks.size(); ++port) {
    const map::AdvancedPort& block = blocks[port];
    const std::string name = "port " + std::to_string(port) + ": ";
    if (block.mode >= map::kConnectionModes)
      return name + "there is no connection mode " + std::to_string(block.mode) + ": they go from 0 to 7";
    if (block.cards() > map::kMostCardsOfPort)
      return name + countText(block.cards(), "card") + ", and a port carries at most " +
             std::to_string(map::kMostCardsOfPort);
    const auto extent = map::blockOf(block, card);
    if (block.x + extent.width > kMostPixels || block.y + extent.height > kMostPixels)
      return name + "its block ends at " + pairText({block.x + extent.width, block.y + extent.height}) +
             ", and neither side of a screen can have more than " + std::to_string(kMostPixels) + " pixels";
  }
  if (const auto verdict = map::checkAdvanced(blocks); !verdict.valid)
    return "the blocks have " + countText(verdict.total, "card") + " together, and there can be " +
           std::to_string(map::kMostCards);
  return {};
}

WallPlan::WallPlan(const SmartScreen& screen) : smart_(screen), card_(screen.card) {
  if (const std::string problem = wallProblem(screen); !problem.empty())
    throw peer::Error(peer::Failure::Usage, problem);
  size_ = {uint32_t{screen.columns} * screen.card.width, uint32_t{screen.rows} * screen.card.height};
  screenField_ = {roundedUpToEven(size_.width), size_.height};
  const map::PortSplit split = map::splitOf(screen);
  for (unsigned number = 0; number < map::kMappedPorts; ++number) {
    const uint32_t place = map::placeOf(split, number);
    const auto [x, y] = map::windowOffset(screen, split, number);
    WallPort port{.port = number, .used = place == number};
    port.window = {split.PortWidth, split.PortHeight};
    port.offset = {x, y};
    port.cable = map::chainAt(screen, split, place);
    port.chain = absolute(port.cable, port.offset);
    if (!port.used) {
      port.duplicateOf = place;
      ports_[place].duplicates.push_back(number);
    }
    ports_.push_back(std::move(port));
  }
}

WallPlan::WallPlan(const AdvancedScreen& blocks, CardSize card) : card_(card) {
  if (const std::string problem = wallProblem(blocks, card); !problem.empty())
    throw peer::Error(peer::Failure::Usage, problem);
  const auto [width, height] = map::screenExtent(blocks, card);
  const auto largest = map::largestBlock(blocks, card);
  size_ = {width, height};
  screenField_ = {roundedUpToEven(largest.width), largest.height};
  for (unsigned number = 0; number < blocks.size(); ++number) {
    const map::AdvancedPort& block = blocks[number];
    const auto extent = map::blockOf(block, card);
    WallPort port{.port = number, .used = !isFiller(blocks, number)};
    port.window = {extent.width, extent.height};
    port.offset = {block.x, block.y};
    port.cable = block.chain(card);
    port.chain = absolute(port.cable, port.offset);
    ports_.push_back(std::move(port));
  }
}

std::vector<WallPort> WallPlan::used() const {
  std::vector<WallPort> used;
  std::ranges::copy_if(ports_, std::back_inserter(used), &WallPort::used);
  return used;
}

bool WallPlan::onGrid() const {
  return std::ranges::all_of(ports_, [this](const WallPort& port) {
    return !port.used || (port.offset.x % card_.width == 0 && port.offset.y % card_.height == 0);
  });
}

PixelBox WallPlan::boxOf(const WallPort& port) const {
  Pixel first = port.chain.front();
  Pixel last = first;
  for (const Pixel card : port.chain) {
    first = {std::min(first.x, card.x), std::min(first.y, card.y)};
    last = {std::max(last.x, card.x), std::max(last.y, card.y)};
  }
  return {first, {last.x - first.x + card_.width, last.y - first.y + card_.height}};
}

bool overlap(const PixelBox& a, const PixelBox& b) {
  return a.at.x < b.right() && b.at.x < a.right() && a.at.y < b.bottom() && b.at.y < a.bottom();
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
  return rangesText({numbers.begin(), numbers.end()});
}

std::string modeText(uint8_t mode) {
  std::string text = std::to_string(mode);
  if (mode < kModeNames.size()) text += ' ' + std::string(kModeNames[mode]);
  return text;
}

}  // namespace parlctl
