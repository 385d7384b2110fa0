// What all nouns share: the command line as data, values, outcomes, comparison, and what is made of them.
#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "clocktext.h"
#include "commandline.h"
#include "complete.h"
#include "helptext.h"
#include "manpage.h"
#include "maps/fpgamap.h"
#include "options.h"
#include "peer/error.h"
#include "readback.h"
#include "registernames.h"
#include "restoreplan.h"

using namespace parlctl;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string usageError(const std::function<void()>& act) {
  try {
    act();
  } catch (const peer::Error& error) {
    EXPECT_EQ(error.failure(), peer::Failure::Usage);
    return error.what();
  }
  return "understood";
}

TEST(ValuesTest, WhatIsNoValueIsNamed) {
  EXPECT_EQ(number("0xFfffFFFF"), 0xFFFFFFFF);
  EXPECT_EQ(product("4x16", 16), (std::pair<uint32_t, uint32_t>{4, 16}));
  EXPECT_THAT(portList("0-2,7,15"), ElementsAre(0, 1, 2, 7, 15));
  EXPECT_EQ(range("0x10-0x1F"), (std::pair<uint32_t, uint32_t>{0x10, 0x1F}));
  EXPECT_EQ(duration("0.25").count(), 250);
  const std::pair<std::function<void()>, const char*> kWrong[] = {
      {[] { number(""); }, "not a number"},   {[] { number("010"); }, "not a number"},
      {[] { number("-1"); }, "not a number"}, {[] { number("0x100000000"); }, "above"},
      {[] { number("5", 4); }, "above 4"},    {[] { fromOne("0", 4); }, "not from 1 to 4"},
      {[] { product("4", 9); }, "x between"}, {[] { product("4x0", 9); }, "not from 1"},
      {[] { product("0x6", 9); }, "'0'"},     {[] { portList("16"); }, "above 15"},
      {[] { portList("3-1"); }, "backwards"}, {[] { portList(""); }, "names no port"},
      {[] { range("9-1"); }, "backwards"},    {[] { duration("0"); }, "seconds"},
      {[] { duration("nan"); }, "seconds"},   {[] { duration("1s"); }, "seconds"},
  };
  for (const auto& [act, words] : kWrong) EXPECT_THAT(usageError(act), HasSubstr(words));
}

TEST(ValuesTest, ListsAndTimesAreWrittenShort) {
  EXPECT_EQ(rangesText({}), "none");
  EXPECT_EQ(rangesText({0, 1, 2, 4, 5, 9}), "0-2, 4, 5, 9");
  EXPECT_THAT(timeText(0), testing::MatchesRegex("19(69|70)-[0-9-]+T[0-9:]+[+-][0-9][0-9]:[0-9][0-9]"));
}

TEST(RegisterNamesTest, RegistersOfLinksNameTheirPorts) {
  EXPECT_THAT(linksIn(0x0200001F, peer::Bytes{0x0D}).value(), ElementsAre(0, 2, 3));
  EXPECT_THAT(linksIn(0x02000126, peer::Bytes{0xF1, 0x08}).value(), ElementsAre(8, 15));
  EXPECT_THAT(linksIn(0x020001F3, peer::Bytes{0x81}).value(), ElementsAre(8, 15));
  EXPECT_FALSE(linksIn(0x02000018, peer::Bytes{1}));
}

TEST(ReadBackTest, TheFirstByteThatDiffersIsNamed) {
  const peer::Bytes written{1, 2, 3};
  EXPECT_EQ(compareBytes(0x10, written, written).text, "verified: 3 bytes read back as written");
  const Comparison other = compareBytes(0x10, written, peer::Bytes{1, 0, 0});
  EXPECT_EQ(other.outcome, Outcome::Mismatch);
  EXPECT_EQ(other.text, "mismatch: 0x00000011: written 02, read back 00");
  EXPECT_EQ(compareBytes(0x10, written, peer::Bytes{1, 2}).text,
            "mismatch: 0x00000012: written 03, read back nothing");
  EXPECT_EQ(compareBytes(0x10, written, peer::Bytes{1, 2, 3, 4}).outcome, Outcome::Verified);
}

TEST(ReadBackTest, ItIsLookedAgainUntilItIsThereAndRefusalsAreUnknown) {
  unsigned looks = 0;
  const auto late = [&looks] { return Comparison{++looks < 3 ? Outcome::Mismatch : Outcome::Verified, ""}; };
  EXPECT_EQ(lookUntil(peer::milliseconds(10000), late).outcome, Outcome::Verified);
  EXPECT_EQ(looks, 3U);
  EXPECT_EQ(lookUntil(peer::milliseconds(0), [] { return Comparison{Outcome::Mismatch, "no"}; }).text, "no");
  const auto failing = [](peer::Failure failure) {
    return [failure]() -> Comparison { throw peer::Error(failure, "why"); };
  };
  const Comparison refused = lookUntil(peer::milliseconds(0), failing(peer::Failure::Acknowledge));
  EXPECT_EQ(refused.outcome, Outcome::Unknown);
  EXPECT_THAT(refused.text, HasSubstr("why"));
  EXPECT_THROW(lookUntil(peer::milliseconds(0), failing(peer::Failure::TimeOut)), peer::Error);
}

TEST(OutcomeTest, WordsExitStatusesAndTheEnvelopeAgree) {
  for (std::size_t i = 0; i < kOutcomes.size(); ++i) {
    const Json object = envelope("wall set", Result{{{"a", 1}}, "", static_cast<Outcome>(i)});
    EXPECT_EQ(object["ok"], kOutcomes[i].status == kDone);
    EXPECT_EQ(object["result"], kOutcomes[i].word);
    EXPECT_EQ(object["schema"], "parlctl.wall.set");
    EXPECT_EQ(object["schema_version"], kSchemaVersion);
    EXPECT_EQ(object["a"], 1);
  }
  for (const FailureText& row : kFailures) {
    const Json object = envelope("", row.failure, "why");
    EXPECT_EQ(object["ok"], false);
    EXPECT_EQ(object["error"]["kind"], row.word);
    EXPECT_EQ(object["error"]["exit_status"], row.status);
    EXPECT_GT(row.status, kDone);
  }
}

// A tool of two nouns.
class CommandLineTest : public testing::Test {
 protected:
  CommandLineTest() {
    root.flag("--json", json, "Objects");
    Verb& play = root.verb("play", "Play things");
    Verb& start = play.verb("start", "Begin to play");
    start.operand("WHAT", what, "The thing").oneOf({"ball", "violin"});
    start.option("--times", "N", times, 1, 9, "How often");
    start.option("--output", "FILE", file, "Where to").letter('o').isFile();
    start.flag("--loud", loud, "Loudly").excludes({"--times"});
    start.example("play start ball");
    start.run([] {});
    Verb& stop = root.verb("stop", "Stop at once");
    stop.operands("NAMES", names, "Who");
    stop.run([] {});
  }
  Asked read(const std::string& line) {
    std::istringstream words("tool " + line);
    arguments.clear();
    for (std::string word; words >> word;) arguments.push_back(word);
    std::vector<char*> pointers;
    for (std::string& word : arguments) pointers.push_back(word.data());
    return parse(root, static_cast<int>(pointers.size()), pointers.data());
  }
  std::string error(const std::string& line) {
    try {
      read(line);
    } catch (const UsageError& wrong) {
      return wrong.text;
    }
    return "understood";
  }
  std::string completed(const std::vector<std::string>& words) const {
    std::string text;
    for (const Candidate& each : candidates(root, words)) text += (text.empty() ? "" : " ") + each.word;
    return text;
  }

  Verb root{"tool", "A tool that plays"};
  std::vector<std::string> arguments;
  std::vector<std::string> names;
  std::string what;
  std::string file;
  uint32_t times = 2;
  bool loud = false;
  bool json = false;
};

TEST_F(CommandLineTest, ValuesArriveAndOptionsOfTheRootStandAnywhere) {
  const Asked asked = read("play start ball --times 0x7 --json -o x");
  EXPECT_EQ(asked.path, "play start");
  EXPECT_EQ(asked.verb->name, "start");
  EXPECT_EQ(times, 7U);
  EXPECT_EQ(what + file, "ballx");
  EXPECT_TRUE(json);
  read("stop -5 a -60");
  EXPECT_THAT(names, ElementsAre("-5", "a", "-60"));
  EXPECT_TRUE(read("play start --help").help);
  EXPECT_TRUE(read("--version").version);
}

TEST_F(CommandLineTest, MistakesAreNamedInItsOwnWords) {
  const std::pair<const char*, const char*> kWrong[] = {
      {"", "'tool' needs a verb: play, stop"},
      {"paly", "'tool' has no verb 'paly'; did you mean 'play'?\nIts verbs: play, stop"},
      {"frobnicate", "'tool' has no verb 'frobnicate'\nIts verbs: play, stop"},
      {"play", "'tool play' needs a verb: start"},
      {"play start", "'tool play start' needs WHAT; see 'parlctl play start --help'"},
      {"play start ball --tmies 3", "'tool play start' has no option '--tmies'; did you mean '--times'?"},
      {"play start violni", "WHAT: 'violni' is not one of: ball, violin; did you mean 'violin'?"},
      {"play start ball --times 10", "--times: 10 is not from 1 to 9"},
      {"play start ball --times 1.5", "--times: '1.5' is not a number (decimal, or hexadecimal after 0x)"},
      {"play start ball --times", "--times needs a value"},
      {"play start ball --times 1 --times 2", "--times is given more than once"},
      {"play start ball --times 1 --loud", "--times and --loud exclude each other"},
      {"play start ball more", "'more' is one argument too many for 'tool play start'"},
  };
  for (const auto& [line, words] : kWrong) EXPECT_EQ(error(line), words) << line;
}

TEST_F(CommandLineTest, CompletionOffersWhatMayStandNext) {
  EXPECT_EQ(completed({""}), "play stop");
  EXPECT_EQ(completed({"s"}), "stop");
  EXPECT_EQ(completed({"play", "start", ""}), "ball violin");
  EXPECT_EQ(completed({"play", "start", "ball", ""}), "");
  EXPECT_EQ(completed({"play", "start", "ball", "--l"}), "--loud");
  EXPECT_EQ(completed({"play", "start", "--times", "3", "v"}), "violin");
  EXPECT_EQ(completed({"play", "start", "--times", ""}), "");
  EXPECT_EQ(completed({"play", "start", "-o", ""}), ":file");
  EXPECT_EQ(completed({"play", "start", "--"}), "--times --output --loud --json --help");
}

TEST_F(CommandLineTest, HelpAndManualTellTheSame) {
  const std::string help = helpText(root, *root.find("play")->find("start"), "play start");
  EXPECT_THAT(help, testing::StartsWith("usage: tool play start WHAT [OPTION...]\n\nBegin to play\n"));
  EXPECT_THAT(help, HasSubstr("  WHAT              The thing: ball, violin\n"));
  EXPECT_THAT(help, HasSubstr("  --times N         How often [2]\n  -o, --output FILE\n"));
  const std::string page = manPage(root, *root.find("play"));
  EXPECT_THAT(
      page,
      HasSubstr(
          ".SS tool play start WHAT [OPTION...]\nBegin to play.\n.TP\n.B WHAT\nThe thing: ball, violin\n"));
  EXPECT_THAT(page, HasSubstr(".B \\-\\-times N\n"));
}

TEST(HelpTextTest, LinesEndBeforeTheLastColumn) {
  const std::string text =
      wrapped(std::string("ab ") + std::string(70, 'c') + " de " + std::string(90, 'f') + "\nsecond", 4);
  EXPECT_EQ(text, "ab " + std::string(70, 'c') + " de\n    " + std::string(90, 'f') + "\nsecond");
}

TEST(ClockTextTest, AClockIsNearThatWasSetHalfAMinuteAgo) {
  const auto set = clockBytes("2024-02-29T23:59:50");
  const std::pair<const char*, bool> shown[] = {{"2024-02-29T23:59:49", false},
                                                {"2024-02-29T23:59:50", true},
                                                {"2024-03-01T00:00:20", true},
                                                {"2024-03-01T00:00:21", false}};
  for (const auto& [text, near] : shown) EXPECT_EQ(clockIsNear(set, clockBytes(text)), near) << text;
}

TEST(RestorePlanTest, TheRoleGoesFirstAndTheProbeAndTheHardwaresRegistersNotAtAll) {
  const auto& section = *std::ranges::find(kBackupSections, "features", &BackupSection::name);
  const peer::Bytes found(section.length);
  peer::Bytes wanted = found;
  for (const uint32_t at : {ORVE_MCUC::fpga::kProbe, ORVE_MCUC::fpga::kNetLinkPorts1To4,
                            ORVE_MCUC::fpga::kBackupMark, ORVE_MCUC::fpga::kScreenWidth})
    wanted[at] = 1;
  const RestorePlan plan = planSection(section, wanted, found);
  ASSERT_EQ(plan.changes.size(), 2U);
  EXPECT_EQ(plan.changes[0].address, section.address + ORVE_MCUC::fpga::kBackupMark);
  EXPECT_EQ(plan.changes[1].address, section.address + ORVE_MCUC::fpga::kScreenWidth);
  EXPECT_EQ(plan.kept.size(), 1U);
}

}  // namespace
