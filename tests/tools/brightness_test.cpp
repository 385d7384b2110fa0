// Brightness plans: their text and bytes, the rules they break, and what their pictures say.
#include <gmock/gmock.h>

#include <fstream>
#include <random>

#include "brightnesscheck.h"
#include "brightnesspicture.h"
#include "brightnessplan.h"
#include "mcucdatablock.h"
#include "peer/error.h"

using namespace parlctl;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

constexpr const char* kMixed = R"({
  // comments are fine
  "mode": "mixed", "gradual": false, "read_every_s": 10, "readings": 2,
  "sensors": [{"port": 0, "card": 3, "sensor": 1}],
  "slots": [{"from": "06:00", "percent": 80}, {"from": "09:00", "ambient": true},
            {"from": "18:00", "percent": 20, "days": "every day"}],
  "lux_map": [{"lux": 100, "percent": 10}, {"lux": 1000, "percent": 100}],
  "fallback_percent": 40
})";
constexpr const char* kTable = R"({"mode": "programmable", "nodes": [
  {"from": "06:00", "brightness": 200, "ports": [0, 2]},
  {"from": "18:30", "brightness": 40, "components": [1, 2, 3, 4]}]})";
constexpr const char* kAutomatic =
    R"({"mode": "automatic", "sensors": [{"port": 9, "card": 1, "sensor": 5}], "lux": [0, 1000],
        "brightness": [20, 220], "steps": 4})";

const int64_t kMonday = map::secondsOf({.year = 24, .month = 6, .day = 3});

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  return text.replace(text.find(what), what.size(), with);
}

TEST(BrightnessPlanTest, TextAndBytesBecomeEachOther) {
  for (const std::string& text :
       std::vector<std::string>{kMixed, kTable, kAutomatic, replaced(kMixed, "mixed", "serial-black")}) {
    const BrightnessPlan plan = planFromText(text);
    const auto bytes = compile(plan);
    EXPECT_EQ(compile(decompile(bytes)), bytes) << text;
    EXPECT_EQ(compile(planFromText(planText(decompile(bytes)))), bytes) << planText(plan);
    EXPECT_THAT(checkFile(bytes), IsEmpty());
  }
  const auto bytes = compile(planFromText(kMixed));
  EXPECT_EQ(map::le16(bytes, record::kFileLength), bytes.size());
  const map::MixedNodes nodes(bytes, map::le16(bytes, record::kTimeNodeBase));
  EXPECT_EQ(nodes.count(), 3);
  EXPECT_TRUE(nodes[1]->ambient);
  EXPECT_EQ(nodes[2]->percent, 20);
  EXPECT_EQ(nodes.time(2), (map::NodeTime{0x18, 0x00}));
}

TEST(BrightnessPlanTest, WhatIsNoPlanIsNamed) {
  const std::pair<std::string, const char*> wrongs[] = {
      {"{", "not a plan"},
      {"[]", "plan: an object"},
      {"{}", "\"mode\" is missing"},
      {R"({"mode": "dim"})", "plan.mode"},
      {replaced(kMixed, "\"gradual\"", "\"gradula\""), "unknown field \"gradula\""},
      {replaced(kMixed, "06:00", "6:00"), "plan.slots[0].from"},
      {replaced(kMixed, "06:00", "24:00"), "no time of day"},
      {replaced(kMixed, "\"percent\": 80", "\"percent\": 256"), "256 is not from 0 to 255"},
      {replaced(kMixed, "\"percent\": 80", "\"percent\": 8.5"), "a whole number"},
      {replaced(kMixed, ", \"percent\": 80", ""), "\"percent\" is missing"},
      {replaced(kMixed, "every day", "mon-fry"), "\"fry\" is no weekday"},
      {replaced(kMixed, "\"lux\": 100,", "\"lux\": 65536,"), "plan.lux_map[0].lux"},
      {replaced(kTable, "[0, 2]", "[0, 4]"), "plan.nodes[0].ports[1]"},
      {replaced(kTable, "[1, 2, 3, 4]", "[1, 2, 3, 4, 5]"), "four components"},
      {replaced(kAutomatic, "[0, 1000]", "[0]"), "plan.lux"},
  };
  for (const auto& [text, words] : wrongs) {
    try {
      planFromText(text);
      ADD_FAILURE() << text;
    } catch (const peer::Error& error) {
      EXPECT_EQ(error.failure(), peer::Failure::Usage);
      EXPECT_THAT(error.what(), HasSubstr(words));
    }
  }
  BrightnessPlan plan = planFromText(kMixed);
  plan.sensors.resize(9);
  EXPECT_THROW(compile(plan), peer::Error);
}

TEST(BrightnessPlanTest, WeekdaysAreWordsAndMasks) {
  for (const auto& [days, mask] : {std::pair{"mon-fri", 0x1F},
                                   {"sat,sun", 0x60},
                                   {"mon,wed", 5},
                                   {"never", 0},
                                   {"every day", 0x7F},
                                   {"sun", 0x40},
                                   {"mon-wed,fri-sun", 0x77}}) {
    EXPECT_EQ(weekdaysText(static_cast<uint8_t>(mask)), days);
    const auto plan = planFromText(replaced(kMixed, "every day", days));
    EXPECT_EQ(plan.slots[2].weekdays, mask) << days;
  }
  EXPECT_EQ(planFromText(replaced(kMixed, "every day", "sat-mon")).slots[2].weekdays, 0x61);
}

std::vector<std::string> rulesOf(const std::vector<PlanFinding>& findings) {
  std::vector<std::string> rules;
  for (const PlanFinding& finding : findings) rules.push_back(finding.rule);
  return rules;
}

TEST(BrightnessCheckTest, EveryBrokenRuleIsNamed) {
  const std::pair<std::string, const char*> wrongs[] = {
      {replaced(kMixed, "09:00", "05:00"), "order"},
      {replaced(kMixed, "09:00", "06:00"), "order"},
      {replaced(kMixed, "\"percent\": 80", "\"percent\": 101"), "percent"},
      {replaced(kMixed, "\"fallback_percent\": 40", "\"fallback_percent\": 140"), "percent"},
      {replaced(kMixed, "every day", "mon-fri"), "weekdays"},
      {replaced(kMixed, "every day", "never"), "weekdays"},
      {replaced(kMixed, "\"lux\": 1000, \"percent\": 100", "\"lux\": 1000, \"percent\": 5"), "map"},
      {replaced(kMixed, "\"lux\": 1000", "\"lux\": 100"), "map"},
      {replaced(kMixed, "\"read_every_s\": 10", "\"read_every_s\": 0"), "interval"},
      {replaced(kMixed, "\"readings\": 2", "\"readings\": 17"), "readings"},
      {replaced(kMixed, "\"port\": 0", "\"port\": 10"), "sensor"},
      {replaced(kMixed, "\"sensor\": 1", "\"sensor\": 6"), "sensor"},
      {replaced(kMixed, "\"gradual\": false", "\"on\": false"), "switch"},
      {R"({"mode": "mixed"})", "slots"},
      {replaced(kTable, "18:30", "05:30"), "order"},
      {replaced(kTable, "[0, 2]", "[]"), "ports"},
      {replaced(kAutomatic, "\"steps\": 4", "\"steps\": 33"), "steps"},
      {replaced(kAutomatic, "[0, 1000]", "[1000, 1000]"), "map"},
  };
  for (const auto& [text, rule] : wrongs)
    EXPECT_THAT(rulesOf(checkPlan(planFromText(text))), Contains(rule)) << text;
}

TEST(BrightnessCheckTest, BytesThatLeadBeyondTheFileAreNamed) {
  const auto good = compile(planFromText(kMixed));
  for (const auto& [at, rule] : {std::pair{record::kSensorBase, "base"},
                                 {record::kTimeNodeBase, "base"},
                                 {record::kLuxMapBase, "base"},
                                 {record::kSensorValidBase, "base"},
                                 {record::kFileLength, "length"}}) {
    for (const uint16_t address : {uint16_t{5119}, uint16_t{5121}, uint16_t{0xFFFF}}) {
      auto bytes = good;
      map::putLe16(bytes, at, address);
      EXPECT_THAT(rulesOf(checkFile(bytes)), Contains(rule)) << at << ' ' << address;
    }
  }
  auto bytes = good;
  bytes[map::le16(bytes, record::kTimeNodeBase) + 1U] = 0x2A;
  EXPECT_THAT(rulesOf(checkFile(bytes)), Contains("time"));
  EXPECT_THAT(rulesOf(checkFile({})), Contains("mode"));
  std::mt19937 random(3);
  for (int round = 0; round < 2000; ++round) {
    std::vector<uint8_t> file(random() % 600);
    for (uint8_t& byte : file) byte = static_cast<uint8_t>(random());
    if (!file.empty() && round % 2 == 0) file[0] = record::kMixed;
    checkFile(file);
    planText(decompile(file));
  }
}

TEST(BrightnessPictureTest, ADayShowsWhatIsSentAndWhy) {
  const BrightnessPicture lit(planFromText(kMixed), kMonday, 1, lightFrom("550"));
  EXPECT_EQ(lit.brightnessAt(3 * 3600), 51);
  EXPECT_EQ(lit.brightnessAt(7 * 3600), 204);
  EXPECT_EQ(lit.brightnessAt(12 * 3600), 140);
  EXPECT_EQ(lit.brightnessAt(20 * 3600), 51);
  EXPECT_THAT(lit.text(), HasSubstr("Monday 2024-06-03"));
  EXPECT_THAT(lit.text(), HasSubstr(" 55 % (140)  sensor"));
  EXPECT_THAT(lit.text(), HasSubstr(" 12 h |###########################"));
  std::vector<SlotKind> kinds;
  for (const SlotSpan& span : lit.spans()) kinds.push_back(span.kind);
  EXPECT_THAT(kinds, ElementsAre(SlotKind::Fixed, SlotKind::Fixed, SlotKind::Ambient, SlotKind::Fixed));
  EXPECT_EQ(lit.spans()[2].slot, 1);
  // Without a light the slot is a band between the ends of its map.
  const BrightnessPicture unlit(planFromText(kMixed), kMonday, 1, {});
  EXPECT_THAT(unlit.text(), HasSubstr("| 10-100 % by light"));
  EXPECT_THAT(unlit.svg(), HasSubstr("between the ends of the map"));
  EXPECT_THAT(lit.svg(), Not(HasSubstr("between the ends of the map")));
  // A plan whose control switch is off waits for it.
  const BrightnessPicture off(planFromText(replaced(kMixed, "\"gradual\"", "\"on\": false, \"gradual\"")),
                              kMonday, 1, lightFrom("550"));
  EXPECT_THAT(off.text(), HasSubstr("nothing is sent"));
}

TEST(BrightnessPictureTest, PicturesAreWholeAndNameTheirAxes) {
  for (const char* text : {kMixed, kTable, kAutomatic}) {
    for (const int days : {1, 7}) {
      const std::string svg = BrightnessPicture(planFromText(text), kMonday, days, lightFrom("400")).svg();
      for (const char* words : {"</svg>", "brightness, % of 255", "<path"})
        EXPECT_THAT(svg, HasSubstr(words)) << text;
      EXPECT_THAT(svg, HasSubstr(days == 1 ? "time of day" : ">Wed<"));
      EXPECT_THAT(svg, Not(HasSubstr("nan")));
    }
  }
  const std::string ports = BrightnessPicture(planFromText(kTable), kMonday, 1, {}).svg();
  EXPECT_THAT(ports, HasSubstr("port 3"));
  EXPECT_THAT(luxCurveSvg(planFromText(kMixed)), HasSubstr("when the sensors fail"));
  EXPECT_THAT(luxCurveText(planFromText(kAutomatic)), HasSubstr("lux"));
  EXPECT_THAT(luxCurveText(planFromText(kTable)), HasSubstr("no table of light"));
}

TEST(BrightnessPictureTest, LightIsANumberOrAFile) {
  const std::string path = testing::TempDir() + "light.txt";
  std::ofstream(path) << "# a day\n06:00 0\n12:00 1000\n\n18:00 200\n";
  const LightOfDay light = lightFrom(path);
  EXPECT_EQ(light(0), 0);
  EXPECT_EQ(light(9 * 3600), 500);
  EXPECT_EQ(light(15 * 3600), 600);
  EXPECT_EQ(light(23 * 3600), 200);
  EXPECT_EQ(lightFrom("99999999999")(0), 0xFFFF);
  for (const char* wrong : {"12:00\n", "12:00 5\n11:00 6\n", "12:60 5\n", "", "25:00 1\n"}) {
    std::ofstream(path) << wrong;
    EXPECT_THROW(lightFrom(path), peer::Error) << wrong;
  }
  EXPECT_THROW(lightFrom("/nowhere"), peer::Error);
}

}  // namespace
