// The screen mapping against a second way to say it: walk the wall card by card from the corner where the
// cable begins, and see which port reaches which card where.
#include "calc/mapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include "calc/advmapping.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

struct Place {
  uint32_t x;
  uint32_t y;
};
struct WalkedPort {
  std::vector<Place> cards;  // absolute pixels, in the order of the cable
  uint32_t left() const {
    return std::min_element(cards.begin(), cards.end(), [](Place a, Place b) { return a.x < b.x; })->x;
  }
  uint32_t top() const {
    return std::min_element(cards.begin(), cards.end(), [](Place a, Place b) { return a.y < b.y; })->y;
  }
};

// One port after the other takes whole lines until it has at least its number of cards. Its cable begins
// where the wall's does and turns at the end of each line.
std::vector<WalkedPort> walk(const SmartScreen& screen) {
  const bool rows = screen.mode % 2 == 0;
  const bool fromRight = screen.mode == 2 || screen.mode == 3 || screen.mode == 6 || screen.mode == 7;
  const bool fromBottom = screen.mode >= 4;
  const uint32_t lines = rows ? screen.rows : screen.columns;
  const uint32_t length = rows ? screen.columns : screen.rows;
  std::vector<WalkedPort> ports(1);
  bool turned = false;
  for (uint32_t line = 0; line < lines; ++line) {
    if (ports.back().cards.size() >= screen.cardsPerPort) {
      ports.emplace_back();
      turned = false;
    }
    for (uint32_t step = 0; step < length; ++step) {
      const uint32_t along = turned ? length - 1 - step : step;
      uint32_t column = rows ? along : line;
      uint32_t row = rows ? line : along;
      if (fromRight) column = screen.columns - 1U - column;
      if (fromBottom) row = screen.rows - 1U - row;
      ports.back().cards.push_back({column * screen.card.width, row * screen.card.height});
    }
    turned = !turned;
  }
  return ports;
}

std::vector<CardPosition> tableOf(std::span<const uint8_t> table) {
  std::vector<CardPosition> entries(kPortTableEntries);
  for (std::size_t i = 0; i < entries.size(); ++i) entries[i] = {le16(table, 4 * i), le16(table, 4 * i + 2)};
  return entries;
}

constexpr uint8_t kUntouched = 0xEE;
std::array<uint8_t, kPortTableSize> filledTable(const CardChain& chain) {
  std::array<uint8_t, kPortTableSize> table{};
  table.fill(kUntouched);
  fillPortTable(chain, table);
  return table;
}

void expectTable(const CardChain& chain, const WalkedPort& port) {
  const auto entries = tableOf(filledTable(chain));
  const std::size_t whole = kPortTableEntries / port.cards.size() * port.cards.size();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Place& card = port.cards[i % port.cards.size()];
    const CardPosition expected = i < whole ? CardPosition{static_cast<uint16_t>(card.x - port.left()),
                                                           static_cast<uint16_t>(card.y - port.top())}
                                            : CardPosition{kUntouched * 0x101, kUntouched * 0x101};
    ASSERT_EQ(entries[i], expected) << "entry " << i;
  }
}

SmartScreen randomScreen(std::mt19937& random) {
  const auto upTo = [&](uint32_t most) { return static_cast<uint16_t>(1 + random() % most); };
  SmartScreen screen;
  do {
    const uint32_t most = random() % 4 == 0 ? 255 : 20;
    screen = {upTo(most), upTo(most), upTo(2000), static_cast<uint8_t>(random() % 8), {upTo(512), upTo(512)}};
  } while (!isValid(screen));
  return screen;
}

class Walls : public testing::TestWithParam<unsigned> {};

TEST_P(Walls, AreCutAsAWalkAlongTheCableCutsThem) {
  std::mt19937 random(GetParam());
  for (int i = 0; i < 15; ++i) {
    const SmartScreen screen = randomScreen(random);
    SCOPED_TRACE(testing::Message() << screen.rows << "x" << screen.columns << " cards "
                                    << screen.cardsPerPort << " mode " << int{screen.mode});
    const PortSplit split = splitOf(screen);
    const auto ports = walk(screen);
    ASSERT_EQ(split.UsedPortNum, ports.size());
    for (unsigned k = 0; k < kMappedPorts; ++k) {
      const WalkedPort& port = ports[k % ports.size()];
      ASSERT_EQ(cardsBehind(split, k), port.cards.size());
      const WindowOffset at = windowOffset(screen, split, k);
      ASSERT_EQ(at.x, ports.size() > kMappedPorts ? 0 : port.left());
      ASSERT_EQ(at.y, ports.size() > kMappedPorts ? 0 : port.top());
    }
    for (uint32_t place = 0; place < ports.size(); ++place) {
      if (ports[place].cards.size() <= kPortTableEntries)
        expectTable(chainAt(screen, split, place), ports[place]);
    }
    const bool rows = screen.mode % 2 == 0;
    const auto lines = static_cast<uint32_t>(ports[0].cards.size()) / (rows ? screen.columns : screen.rows);
    ASSERT_EQ(split.PortWidth, (rows ? screen.columns : lines) * screen.card.width);
    ASSERT_EQ(split.PortHeight, (rows ? lines : screen.rows) * screen.card.height);
  }
}
INSTANTIATE_TEST_SUITE_P(Random, Walls, testing::Range(0U, 8U));

TEST(Mapping, CoversTheWallOnceWithTheCardsOfAllUsedPorts) {
  for (uint8_t mode = 0; mode < kConnectionModes; ++mode) {
    const SmartScreen screen{7, 9, 17, mode, {64, 48}};
    const PortSplit split = splitOf(screen);
    std::set<std::pair<uint32_t, uint32_t>> covered;
    for (unsigned port = 0; port < split.UsedPortNum; ++port) {
      const CardChain chain = chainAt(screen, split, port);
      const WindowOffset at = windowOffset(screen, split, port);
      for (uint32_t line = 0; line < chain.lines; ++line) {
        for (uint32_t card = 0; card < chain.lineLength; ++card) {
          const CardPosition position = positionOf(chain, line, card);
          EXPECT_TRUE(covered.emplace(at.x + position.x, at.y + position.y).second);
        }
      }
    }
    EXPECT_EQ(covered.size(), screen.cards());
    EXPECT_EQ(*covered.begin(), std::pair(0U, 0U));
    EXPECT_EQ(*covered.rbegin(), std::pair(8 * 64U, 6 * 48U));
  }
}

TEST(Mapping, RefusesScreensThatCannotBeCalculated) {
  const SmartScreen good{4, 6, 10, 0, {128, 128}};
  ASSERT_TRUE(isValid(good));
  const auto with = [&](auto change) {
    SmartScreen screen = good;
    change(screen);
    return isValid(screen);
  };
  EXPECT_FALSE(with([](SmartScreen& s) { s.rows = 0; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s.columns = 0; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s.cardsPerPort = 0; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s.card.width = 0; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s.card.height = 0; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s.mode = 8; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s.cardsPerPort = 25; })) << "one port takes more than there are";
  EXPECT_TRUE(with([](SmartScreen& s) { s.cardsPerPort = 24; }));
  EXPECT_FALSE(with([](SmartScreen& s) { s = {20, 1, 1, 0, {128, 128}}; })) << "more than sixteen ports";
  EXPECT_TRUE(with([](SmartScreen& s) { s = {16, 1, 1, 0, {128, 128}}; }));
  EXPECT_TRUE(with([](SmartScreen& s) { s = {255, 255, 65025, 0, {65535, 65535}}; }));
}

TEST(Mapping, LeavesATableAloneThatTheChainDoesNotFitInto) {
  for (const CardChain& chain : {chainOf(0, 5, 205, {}), chainOf(1, 255, 255, {}), chainOf(0, 0, 7, {})}) {
    const auto table = filledTable(chain);
    EXPECT_TRUE(std::all_of(table.begin(), table.end(), [](uint8_t byte) { return byte == kUntouched; }));
  }
  EXPECT_EQ(repetitionsOf(chainOf(0, 32, 32, {})), 1U);
}

TEST(AdvancedMapping, RefusesTooManyCardsAndUnknownModes) {
  AdvancedScreen screen;
  screen.fill({0, 1, 1, 0, 0});
  EXPECT_TRUE(checkAdvanced(screen).valid);
  screen[3] = {0, 23, 23, 0, 0};
  const AdvancedVerdict onePort = checkAdvanced(screen);
  EXPECT_FALSE(onePort.valid);
  EXPECT_TRUE(onePort.portRefused);
  EXPECT_EQ(onePort.total, 3U + 529U);
  screen.fill({0, 15, 15, 0, 0});
  const AdvancedVerdict all = checkAdvanced(screen);
  EXPECT_FALSE(all.valid);
  EXPECT_FALSE(all.portRefused);
  EXPECT_EQ(all.total, 2250U);
  screen.fill({8, 1, 1, 0, 0});
  EXPECT_FALSE(checkAdvanced(screen).valid);
  screen.fill({7, 512, 1, 0, 0});
  EXPECT_FALSE(checkAdvanced(screen).valid) << "each port is full, and together they are too many";
  EXPECT_TRUE(checkAdvanced({{{7, 16, 32, 0, 0}}}).valid);
}

TEST(AdvancedMapping, MeasuresExtentAndLargestBlock) {
  AdvancedScreen screen{};
  screen[0] = {0, 2, 3, 0, 0};
  screen[1] = {2, 2, 3, 384, 0};
  screen[2] = {1, 1, 1, 0, 700};
  const PixelExtent extent = screenExtent(screen, {128, 128});
  EXPECT_EQ(extent.width, 768U);
  EXPECT_EQ(extent.height, 828U);
  const PixelExtent block = largestBlock(screen, {128, 128});
  EXPECT_EQ(block.width, 384U);
  EXPECT_EQ(block.height, 256U);
  EXPECT_EQ(positionOf(screen[1].chain({128, 128}), 0, 0), (CardPosition{256, 0}));
}

TEST(AdvancedMapping, AnEdgeBeyond16BitsCountsAsWhatIsLeftOfIt) {
  AdvancedScreen screen{};
  screen[0] = {0, 1, 1, 65500, 0};
  screen[1] = {0, 1, 1, 0, 65408};
  screen[9] = {0, 2, 1, 10, 65500};
  const PixelExtent extent = screenExtent(screen, {97, 128});
  EXPECT_EQ(extent.width, 107U) << "65597 is 61";
  EXPECT_EQ(extent.height, 220U) << "65536 is 0, and 65756 is 220";
}

}  // namespace
}  // namespace ORVE_MCUC
