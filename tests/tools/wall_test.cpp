// Walls as parlctl shows and checks them: plans, text, pictures, and comparison with what an FPGA holds.
#include <gmock/gmock.h>

#include <set>
#include <vector>

#include "mcucdatablock.h"
#include "peer/error.h"
#include "wallblocks.h"
#include "wallchanges.h"
#include "wallcheck.h"
#include "wallpicture.h"
#include "wallverify.h"
#include "xmlwriter.h"

using namespace parlctl;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

SmartScreen screen(uint16_t rows, uint16_t columns, uint16_t cards, unsigned mode, CardSize card = {}) {
  return {.rows = rows,
          .columns = columns,
          .cardsPerPort = cards,
          .mode = static_cast<uint8_t>(mode),
          .card = card};
}

TEST(WallPlanTest, PortsLieOnTheWallAndThoseBeyondTheUsedRepeatThem) {
  const WallPlan plan(screen(3, 5, 4, 1));
  ASSERT_EQ(plan.used().size(), 3U);
  EXPECT_EQ(plan.size(), (PixelSize{640, 384}));
  EXPECT_EQ(plan.ports()[2].offset, (Pixel{512, 0}));
  EXPECT_THAT(plan.ports()[2].chain, ElementsAre(Pixel{512, 0}, Pixel{512, 128}, Pixel{512, 256}));
  EXPECT_EQ(plan.ports()[2].window, (PixelSize{256, 384}));
  EXPECT_THAT(plan.ports()[0].duplicates, ElementsAre(3, 6, 9));
  EXPECT_EQ(plan.ports()[8].duplicateOf, 2U);
  EXPECT_EQ(plan.ports()[8].chain, plan.ports()[2].chain);
  EXPECT_EQ(WallPlan(screen(4, 6, 10, 4)).ports()[0].chain.front(), (Pixel{0, 384}));
}

// What the name of a mode promises, whatever the split: every card is fed once, the cable goes from neighbour
// to neighbour, and it begins where the name says and in the direction that it says.
void expectServed(const WallPlan& plan, const std::string& name) {
  std::set<std::pair<uint32_t, uint32_t>> fed;
  const CardSize card = plan.card();
  for (const WallPort& port : plan.used()) {
    const auto& chain = port.chain;
    for (std::size_t i = 0; i < chain.size(); ++i) {
      EXPECT_TRUE(fed.emplace(plan.rowOf(chain[i]), plan.columnOf(chain[i])).second) << name;
      if (i == 0) continue;
      const bool sideways = chain[i].y == chain[i - 1].y;
      const uint32_t step = sideways
                                ? std::max(chain[i].x, chain[i - 1].x) - std::min(chain[i].x, chain[i - 1].x)
                                : std::max(chain[i].y, chain[i - 1].y) - std::min(chain[i].y, chain[i - 1].y);
      EXPECT_EQ(step, sideways ? card.width : card.height) << name;
    }
  }
  EXPECT_EQ(fed.size(), std::size_t{plan.rows()} * plan.columns()) << name;
  const Pixel first = plan.used()[0].chain.front();
  EXPECT_EQ(first.y == 0, name.starts_with("top")) << name;
  EXPECT_EQ(first.x == 0, name.find("left") != std::string::npos) << name;
  EXPECT_EQ(plan.used()[0].chain[1].y == first.y, name.ends_with("rows")) << name;
}

TEST(WallPlanTest, EveryModeIsWhatItsNameSays) {
  for (unsigned mode = 0; mode < kModeNames.size(); ++mode) {
    for (const auto& [rows, columns, cards] :
         {std::tuple{4, 6, 12}, {7, 5, 11}, {5, 7, 11}, {2, 2, 4}, {40, 50, 200}, {3, 19, 9}}) {
      expectServed(WallPlan(screen(static_cast<uint16_t>(rows), static_cast<uint16_t>(columns),
                                   static_cast<uint16_t>(cards), mode, {192, 108})),
                   std::string(kModeNames[mode]));
    }
  }
}

TEST(WallPlanTest, WhatTheDaemonDoesNotMapIsNamedWithItsNumbers) {
  for (const auto& [wall, reason] :
       {std::pair{screen(0, 6, 1, 0), "must not be zero: 0 x 6"},
        {screen(4, 6, 25, 0), "24 cards (4 x 6), fewer than the 25"},
        {screen(20, 1, 1, 0), "20 cards (20 x 1), more than 16 ports carry with 1 card"},
        {screen(16, 1, 1, 0), "needs 16 ports with 1 card each"},
        {screen(200, 200, 4000, 0), "carry 4000 cards (whole lines)"},
        {screen(4, 6, 12, 8), "no connection mode 8"},
        {screen(4, 6, 12, 0, {128, 0}), "128 x 0"},
        {screen(8, 100, 100, 0, {700, 8}), "70000 x 64 pixels"}}) {
    EXPECT_THAT(wallProblem(wall), HasSubstr(reason));
    EXPECT_THROW(WallPlan{wall}, peer::Error);
  }
  EXPECT_EQ(wallProblem(screen(24, 1, 24, 1)), "");
  EXPECT_EQ(wallProblem(screen(100, 100, 1000, 0)), "");
}

TEST(WallPlanTest, CardsPerPortAreTheFewestWholeLinesThatServe) {
  EXPECT_EQ(cardsForPorts(screen(4, 6, 0, 0), 10), 6);
  EXPECT_EQ(cardsForPorts(screen(4, 6, 0, 0), 3), 12);
  EXPECT_EQ(cardsForPorts(screen(4, 6, 0, 1), 4), 8);
  EXPECT_EQ(cardsForPorts(screen(255, 255, 0, 0), 1), 65025);
}

TEST(WallTextTest, ASmallWallShowsEveryCardAndItsWay) {
  EXPECT_EQ(wallText(WallPlan(screen(2, 3, 4, 3))),
            "wall     2 x 3 cards of 128 x 128, 384 x 256 pixels\n"
            "chains   mode 3 top-right-columns, 4 cards per port, 2 ports in use\n"
            "\n"
            "Front view: PORT:CARD, cards counted along the cable; pixels at the edges\n"
            "\n"
            "       0     128   256\n"
            "    0  1:0   0:3   0:0\n"
            "        v     ^     v\n"
            "  128  1:1   0:2 < 0:1\n"
            "\n"
            "port  window         offset        cards  first card    last card     copies\n"
            "0     256 x 256      128, 0        4      256, 0        128, 0        2, 4, 6, 8\n"
            "1     256 x 256      0, 0          2      0, 0          0, 128        3, 5, 7, 9");
}

TEST(WallTextTest, ALargeWallHasACharacterACard) {
  const std::string text = wallText(WallPlan(screen(2, 30, 30, 4)));
  EXPECT_THAT(text, HasSubstr("\n    0  1" + std::string(28, '>') + "#\n"));
  EXPECT_THAT(text, HasSubstr("\n  128  0" + std::string(28, '>') + "#\n"));
  EXPECT_THAT(wallText(WallPlan(screen(65, 1, 65, 5))), HasSubstr("\n    0  #\n  128  ^\n"));
}

// Elements that nest, attributes in quotes, nothing unescaped.
testing::AssertionResult wellFormed(const std::string& xml) {
  std::vector<std::string> open;
  std::size_t at = 0;
  for (std::size_t begin = xml.find('<'); begin != std::string::npos; begin = xml.find('<', at)) {
    const std::string between = xml.substr(at, begin - at);
    if (between.find('>') != std::string::npos) return testing::AssertionFailure() << "text " << between;
    const std::size_t end = xml.find('>', begin);
    if (end == std::string::npos) return testing::AssertionFailure() << "an element without an end";
    const std::string tag = xml.substr(begin + 1, end - begin - 1);
    if (tag.find('<') != std::string::npos || std::count(tag.begin(), tag.end(), '"') % 2 != 0)
      return testing::AssertionFailure() << "element " << tag;
    const std::string name = tag.substr(0, tag.find_first_of(" /", 1));
    if (tag[0] == '/') {
      if (open.empty() || "/" + open.back() != tag) return testing::AssertionFailure() << "end " << tag;
      open.pop_back();
    } else if (tag.back() != '/') {
      open.push_back(name);
    }
    at = end + 1;
  }
  for (std::size_t i = xml.find('&'); i != std::string::npos; i = xml.find('&', i + 1))
    if (xml.find(';', i) > i + 6) return testing::AssertionFailure() << "a bare ampersand";
  if (!open.empty()) return testing::AssertionFailure() << open.back() << " stays open";
  return testing::AssertionSuccess();
}

TEST(XmlWriterTest, TextAndAttributesAreEscaped) {
  XmlWriter xml;
  xml.open("a", {{"b", "\"<&>\""}});
  xml.element("c", {}, "1 < 2 & 3");
  xml.close();
  EXPECT_EQ(xml.text(), "<a b=\"&quot;&lt;&amp;&gt;&quot;\">\n  <c>1 &lt; 2 &amp; 3</c>\n</a>\n");
  EXPECT_EQ(xmlNumber(-0.001), "0");
  EXPECT_EQ(xmlNumber(100), "100");
  EXPECT_EQ(xmlNumber(1.255001), "1.26");
}

TEST(WallSvgTest, PicturesAreWellFormedAndFitWhateverTheWall) {
  for (const auto& wall :
       {screen(1, 1, 1, 0), screen(4, 6, 12, 0), screen(1, 255, 255, 2), screen(255, 1, 255, 1),
        screen(100, 100, 1000, 7), screen(9, 16, 16, 6, {480, 270})}) {
    const std::string svg = wallSvg(WallPlan(wall));
    EXPECT_TRUE(wellFormed(svg));
    EXPECT_THAT(svg, HasSubstr("front view"));
    EXPECT_THAT(svg, Not(HasSubstr("nan")));
    const double width = std::stod(svg.substr(svg.find("width=\"") + 7));
    EXPECT_LE(width, 1200);
    EXPECT_LE(std::stod(svg.substr(svg.find("height=\"") + 8)), 2200);
  }
}

TEST(WallSvgTest, PortsDuplicatesAndCardsAreNamedWhereThereIsRoom) {
  const std::string small = wallSvg(WallPlan(screen(4, 6, 12, 0)));
  for (const char* text :
       {"768 x 512 pixels", "ports 2, 4, 6, 8 repeat port 0", "at 0, 256", ">1:11<", ">384<"})
    EXPECT_THAT(small, HasSubstr(text));
  EXPECT_THAT(wallSvg(WallPlan(screen(4, 5, 5, 0))), HasSubstr("port 6 repeats port 2"));
  const std::string large = wallSvg(WallPlan(screen(90, 100, 900, 7)));
  EXPECT_THAT(large, HasSubstr(">port 9<"));
  EXPECT_THAT(large, Not(HasSubstr(">9:1<")));
}

// Two blocks beside each other, the second from the right, and one below both.
AdvancedScreen blocks(const std::string& text =
                          "0: 2x3 at 0,0 top-left-rows\n1: 2x3 at 384,0 top-right-rows\n"
                          "4: 1x6 at 0,256 5\n") {
  return parseBlocks(text);
}

TEST(WallBlocksTest, LinesAreReadAndWrittenAndBadOnesNamed) {
  const WallPlan plan(blocks("# a wall\n 0: 2x3 at 0,0\n\n9: 1x1 at 384,0 bottom-right-columns # the last\n"),
                      {});
  EXPECT_EQ(blocksText(plan), "0: 2x3 at 0,0 top-left-rows\n9: 1x1 at 384,0 bottom-right-columns\n");
  EXPECT_EQ(plan.size(), (PixelSize{512, 256}));
  for (const auto& [text, reason] :
       {std::pair{"", "no line names a port"},
        {"0 2x3 at 0,0", "line 1: not 'PORT: "},
        {"0: 2x3 0,0", "line 1: not"},
        {"\n10: 2x3 at 0,0", "line 2: '10' is above 9"},
        {"0: 0x3 at 0,0", "'0' is not from 1"},
        {"0: 2x256 at 0,0", "'256' is above 255"},
        {"0: 2x3 at 0", "'0' is not X,Y"},
        {"0: 2x3 at 0,65536", "above 65535"},
        {"0: 2x3 at 0,0 middle", "no connection mode"},
        {"0: 2x3 at 0,0 0 0", "one word too many"},
        {"0: 1x1 at 0,0\n0: 1x1 at 0,0", "line 2: port 0 for the second time"}}) {
    try {
      parseBlocks(text);
      ADD_FAILURE() << text;
    } catch (const peer::Error& error) {
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }
  EXPECT_THAT(wallProblem(blocks("0: 23x23 at 0,0"), {}), HasSubstr("port 0: 529 cards"));
  EXPECT_THAT(wallProblem(blocks("0: 1x1 at 65500,0"), {}),
              HasSubstr("port 0: its block ends at 65628, 128"));
}

TEST(WallBlocksTest, PortsWithoutABlockAreNotInUse) {
  const WallPlan plan(blocks(), {});
  std::vector<unsigned> used;
  for (const WallPort& port : plan.used()) used.push_back(port.port);
  EXPECT_THAT(used, ElementsAre(0, 1, 4));
  EXPECT_EQ(plan.screenField(), (PixelSize{768, 256}));  // the largest block
  EXPECT_EQ(plan.size(), (PixelSize{768, 384}));
  EXPECT_EQ(plan.ports()[1].chain.front(), (Pixel{640, 0}));
  EXPECT_THAT(wallText(plan), HasSubstr("    0  0:0 > 0:1 > 0:2   1:2 < 1:1 < 1:0\n"));
  EXPECT_EQ(WallPlan(blocks("0: 1x1 at 0,0\n3: 1x1 at 128,0"), {}).used().size(), 2U);
}

std::vector<std::string> ids(const WallPlan& plan, const WallFacts& facts = {}) {
  std::vector<std::string> list;
  for (const Finding& finding : checkWall(plan, facts))
    list.push_back(finding.id + (finding.port ? ':' + std::to_string(*finding.port) : ""));
  return list;
}

TEST(WallCheckTest, EachRuleFindsItsOwnMistakeAndNothingElse) {
  const WallPlan sound(screen(4, 6, 12, 0));
  EXPECT_THAT(ids(sound), ElementsAre());
  EXPECT_THAT(ids(sound, {.links = {{0, 1, 2}}, .cardMeasured = true, .silentPorts = {}}), ElementsAre());
  EXPECT_THAT(ids(sound, {.links = {{0, 2}}, .cardMeasured = false, .silentPorts = {0, 5}}),
              ElementsAre("W101:1", "W103:0", "W104"));
  EXPECT_THAT(ids(WallPlan(screen(4, 6, 10, 0))), ElementsAre("W102:0", "W102:1"));
  EXPECT_THAT(ids(WallPlan(screen(5, 6, 12, 0))), ElementsAre("W105:2"));  // over the edge
  EXPECT_THAT(ids(WallPlan(screen(5, 6, 12, 4))), ElementsAre("W105:2"));  // over port 1, which begins there
  EXPECT_THAT(ids(WallPlan(screen(6, 5, 12, 3))), ElementsAre("W105:2"));
  EXPECT_THAT(ids(WallPlan(blocks(), {}), {.links = {{0, 1, 4}}}), ElementsAre());
  EXPECT_THAT(ids(WallPlan(blocks(), {}), {.links = {{0, 1, 4, 9, 12}}}), ElementsAre("W204:9"));
  EXPECT_THAT(ids(WallPlan(blocks("0: 2x3 at 0,0\n1: 2x3 at 256,0"), {})), ElementsAre("W201:1"));
  EXPECT_THAT(ids(WallPlan(blocks("0: 2x3 at 0,0\n1: 2x3 at 512,0"), {})), ElementsAre("W202"));
  EXPECT_THAT(ids(WallPlan(blocks("0: 2x3 at 0,0\n1: 2x3 at 385,0"), {})), ElementsAre("W202", "W203:1"));
}

TEST(WallCheckTest, AGapIsMeasuredInCards) {
  const auto found = checkWall(WallPlan(blocks("0: 2x2 at 0,0\n1: 1x2 at 256,0"), {}), {});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_THAT(found[0].line(),
              testing::StartsWith("W202 wall: no block covers 32768 pixels, as many as 2 cards"));
}

TEST(WallChangesTest, OnlyWhatDiffersIsNamed) {
  const WallPlan before(screen(4, 6, 12, 0));
  EXPECT_THAT(changesBetween(before, before), testing::IsEmpty());
  std::string text;
  for (const Change& change : changesBetween(before, WallPlan(screen(4, 6, 12, 2))))
    text += change.what + ": " + change.from + " -> " + change.to + '\n';
  EXPECT_EQ(
      text,
      "kind: 4 x 6 cards, 12 per port, mode 0 top-left-rows -> 4 x 6 cards, 12 per port, mode 2 "
      "top-right-rows\n"
      "port 0: 12 cards at 0, 0, mode 0 top-left-rows -> 12 cards at 0, 0, mode 2 top-right-rows\n"
      "port 1: 12 cards at 0, 256, mode 0 top-left-rows -> 12 cards at 0, 256, mode 2 top-right-rows\n");
  EXPECT_EQ(changesBetween(std::nullopt, WallPlan(blocks(), {})).size(), 13U);
}

TEST(WallWiringTest, SheetsAreWellFormedAndTheRearIsMirrored) {
  for (const WallPlan& plan :
       {WallPlan(screen(4, 6, 12, 0)), WallPlan(screen(100, 100, 1000, 7)), WallPlan(blocks(), {})})
    for (const bool rear : {false, true})
      EXPECT_TRUE(wellFormed(wiringSvg(plan, {.rear = rear, .port = {}})));
  const WallPlan plan(screen(4, 6, 12, 0));
  EXPECT_THAT(wiringText(plan, {}), HasSubstr("cable 1  controller port 1 to row 3, column 1, 12 cards\n"
                                              "         2 lines of 6: right, down, left\n"
                                              "         ends at row 4, column 1"));
  const std::string rear = wiringText(plan, {.rear = true, .port = 0});
  EXPECT_THAT(rear, HasSubstr("to row 1, column 6"));
  EXPECT_THAT(rear, HasSubstr("2 lines of 6: left, down, right"));
  EXPECT_THAT(rear, Not(HasSubstr("cable 1")));
}

// An FPGA, or the flash, that holds what a calculation of a wall writes.
class WallVerifyTest : public testing::Test {
 protected:
  WallVerifyTest() { hold(plan); }
  void hold(const WallPlan& wall) {
    constexpr std::array<uint32_t, 10> kRecords{0x51, 0x5A, 0x63, 0x6C, 0xB1, 0xBA, 0xC3, 0xCC, 0x131, 0x13A};
    put(0x24, {wall.screenField().width, wall.screenField().height});
    put(0x1EC, {wall.size().width, wall.size().height});
    for (const WallPort& port : wall.ports()) {
      put(kRecords[port.port], {port.window.width, port.window.height, port.offset.x, port.offset.y});
      const auto cards = static_cast<uint32_t>(port.chain.size());
      put(0x500000 + 0x1000 * (port.port / 4) + 0x20 * (port.port % 4), {cards});
      for (uint32_t entry = 0; entry < 1024 / cards * cards; ++entry) {
        const Pixel card = port.chain[entry % cards];
        put(0x600000 + port.port * 0x1000 + 4 * entry, {card.x - port.offset.x, card.y - port.offset.y});
      }
    }
  }
  void put(std::size_t at, const std::vector<uint32_t>& values) {
    for (const uint32_t value : values) {
      ORVE_MCUC::putLe16(fpga, at, static_cast<uint16_t>(value));
      at += 2;
    }
  }
  Difference difference() const { return firstDifference(plan, way); }

  peer::Bytes fpga = peer::Bytes(0x60A000);
  WallPlan plan{screen(4, 6, 12, 0)};
  ReadBack way{"memory", [this](uint32_t address, std::size_t length) {
                 return peer::Bytes(fpga.begin() + address,
                                    fpga.begin() + address + static_cast<long>(length));
               }};
};

TEST_F(WallVerifyTest, TheFirstDifferenceIsFoundAndNamed) {
  EXPECT_TRUE(difference().none()) << difference().text();
  put(0x609000 + 4 * 1020, {1, 1});  // behind the last whole repetition
  EXPECT_TRUE(difference().none()) << difference().text();
  // Each is found before the one above it.
  const std::tuple<uint32_t, std::vector<uint32_t>, std::string> kSteps[] = {
      {0x609000 + 4 * 1019, {0, 127}, "port 9, entry 1019: expected 0, 128, found 0, 127"},
      {0x603000 + 4 * 3, {0, 0}, "port 3, entry 3: expected 384, 0, found 0, 0"},
      {0x502020, {11}, "port 9, card count: expected 12, found 11"},
      {0x501000, {268}, "port 4, card count: expected 12, found 268"},
      {0x137, {255}, "port 8, window: expected 768 x 256 at 0, 0, found 768 x 256 at 0, 255"},
      {0x26, {513}, "screen size (0x24): expected 768 x 512, found 768 x 513"},
      {0x1EC, {769}, "output size (0x1EC): expected 768 x 512, found 769 x 512"}};
  for (const auto& [address, values, text] : kSteps) {
    put(address, values);
    EXPECT_EQ(difference().text(), text);
  }
}

TEST_F(WallVerifyTest, WallsOfBothKindsAreRecognised) {
  for (const WallPlan& wall :
       {WallPlan(screen(3, 33, 40, 3, {7, 9})), WallPlan(blocks(), {}), WallPlan(screen(1, 1, 1, 7))}) {
    hold(wall);
    plan = wall;
    EXPECT_TRUE(difference().none()) << difference().text();
    EXPECT_EQ(lastEntryAddress(plan),
              0x609000 + 4 * (1024 / plan.ports()[9].chain.size() * plan.ports()[9].chain.size() - 1));
  }
}

TEST(WallVerifyMapTest, TheSavedCopyLiesWhereTheFlashMapSays) {
  EXPECT_EQ(savedAt(0x51), 0xA3B151U);
  EXPECT_EQ(savedAt(0x500060), 0xA5C060U);
  EXPECT_EQ(savedAt(0x501020), 0xA5C0A0U);
  EXPECT_EQ(savedAt(0x502000), 0xA5C200U);
  EXPECT_EQ(savedAt(0x609FFC), 0xA45FFCU);
}

TEST_F(WallVerifyTest, TheFirstWayThatIsOpenIsTaken) {
  const ReadBack closed{"closed", [](uint32_t, std::size_t) -> peer::Bytes {
                          throw peer::Error(peer::Failure::Acknowledge, "refused");
                        }};
  const ReadBack half{"half", [this](uint32_t address, std::size_t length) {
                        if (address >= 0x600000) throw peer::Error(peer::Failure::ShortReply, "short");
                        return way.read(address, length);
                      }};
  const ReadBack zeros{"zeros", [](uint32_t, std::size_t length) { return peer::Bytes(length); }};
  EXPECT_EQ(openWay({closed, half, zeros, way}).name, "memory");
  EXPECT_EQ(openWay({closed, zeros}).name, "zeros");  // the board itself has nothing else
  for (const auto& [ways, reason] : {std::pair{std::vector{closed, half}, "half: short"},
                                     {std::vector{zeros}, "zeros: nothing but zeros"},
                                     {std::vector{zeros, half}, "half: short"}}) {
    try {
      openWay(ways);
      FAIL() << "no way is open";
    } catch (const peer::Error& error) {
      EXPECT_EQ(error.failure(), peer::Failure::NoDaemon);
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }
}

}  // namespace
