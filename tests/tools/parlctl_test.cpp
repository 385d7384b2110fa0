// parlctl as a shell sees it: exit status, output, and what it does to a running daemon.
#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <sstream>

#include "parlctl_fixture.h"

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;

namespace {

class ParlctlTest : public ParlctlFixture {};

std::size_t longestLine(const std::string& text) {
  std::size_t longest = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size());
  return longest;
}

// Each ends with status 2 before anything is sent: no daemon is there to ask.
constexpr const char* kWrongArguments =
    R"(reg | reg read | reg read 1x | reg read 010 | reg read 0x100000000 | reg read 0:0x1000001 | reg read 0:0
reg read 0x0500FFFF | reg read 0x030001EF:4 | reg read 0 --raw --json | reg write 5=@/nonexistent
card write 5=00 --card 65535 --verify | reg read 5: | reg write 5 | reg write 5= | reg write 5=0
reg write 5=zz | reg read 0 --port 256 | card read 0 --type sending | card read 0 --type 0
card write 0 --card 2 | --timeout 0 reg read 0 | watch --as nobody | watch --count 0 | watch --for x
board link 16 on | board link 3-1 on | board link , on | board link 1 maybe
board link 1 on --copper --fiber1 | board fault nothing 1 | board fault card-read x
board fault card-read 1 --range 0-5 | board fault flash-write 1 --range 0
board power cut | board power off --after 3 | board power sideways
board sensor 32 5 | board sensor 0 bright | board clock 5 | board clock +x | board show | wall preview
wall preview 4 | wall preview 0x6 | wall preview 4x256 | wall preview 4x6x8 | wall preview 4x6 --cards 0
wall preview 4x6 --cards 65536 | wall preview 4x6 --cards 25 | wall preview 4x6 --mode 8
wall preview 4x6 --mode middle-rows | wall preview 4x6 --cards 6 --ports 4 | wall preview 4x6 --ports 11
wall preview 4x6 --card-size 128 | wall preview 4x6 --svg /nonexistent/wall.svg | wall set 4x6 --mode 8
wall set | wall set 4x6 --blocks x | wall set --blocks /nonexistent | wall check --cards 12 | wall wiring --mode 3
wall set --blocks x --mode 3 | card read 0 --port 255 | log show --decode --level error | wall set 4x6 --svg /nonexistent/x
wall set 4x6 --plan --wait | wall check 4 | wall undo | wall wiring --port 10 | log show --since yesterday
log show --level loud | log follow --for never | log show | capture | capture -o /nonexistent/x
cabfile put /tmp | cabfile put /dev/null | reg write 5=@/tmp | input edid set --file /tmp
replay /nonexistent | bundle | bundle -o /nonexistent/x | sim run --daemon /nonexistent | manual nothing
completion csh | frobnicate)";

TEST_F(ParlctlTest, WrongArgumentsAreUsageErrorsThatNameTheCulprit) {
  std::string all = kWrongArguments;
  std::ranges::replace(all, '\n', '|');
  std::istringstream lines(all);
  for (std::string wrong; std::getline(lines, wrong, '|');) {
    const Outcome outcome = run(wrong);
    EXPECT_EQ(outcome.status, 2) << wrong << ": " << outcome.output;
    EXPECT_NE(outcome.output, "") << wrong;
  }
  EXPECT_EQ(run("").status, 2);
  EXPECT_EQ(run(std::string("--version; ") + PARLCTL + " --board /dev/null/x sim run").status, 2);
  EXPECT_LE(longestLine(run("frobnicate").output), 80U);
  EXPECT_EQ(run("--help").status, 0);
  EXPECT_EQ(run("reg read --help").status, 0);
}

// Every noun and verb, as the completion knows them.
std::vector<std::string> verbsBelow(const std::function<Outcome(const std::string&)>& run,
                                    const std::string& path) {
  std::vector<std::string> found{path};
  std::istringstream lines(run(std::string("--version; ") + PARLCTL + " __complete " + path + " ''").output);
  for (std::string line; std::getline(lines, line);) {
    if (line.find('\t') == std::string::npos) continue;  // values of an operand
    for (std::string& verb : verbsBelow(run, path + ' ' + line.substr(0, line.find('\t'))))
      found.push_back(verb);
  }
  return found;
}

TEST_F(ParlctlTest, EveryVerbHasHelpThatFitsAndAPage) {
  const auto verbs = verbsBelow([this](const std::string& line) { return run(line); }, "");
  EXPECT_GT(verbs.size(), 30U);
  for (const std::string& verb : verbs) {
    const Outcome help = run(verb + " --help");
    EXPECT_EQ(help.status, 0) << verb;
    EXPECT_THAT(help.output, HasSubstr("usage: parlctl" + verb)) << verb;
    EXPECT_LE(longestLine(help.output), 80U) << verb;
    const bool isNoun = std::count(verb.begin(), verb.end(), ' ') == 1;
    EXPECT_TRUE(!isNoun || run("manual" + verb).output.find(".SH NAME\nparlctl\\-") != std::string::npos)
        << verb;
  }
  EXPECT_THAT(run("--version").output, testing::StartsWith("parlctl 1."));
}

TEST_F(ParlctlTest, OutputThatDoesNotArriveIsNoticed) {
  for (const char* lost : {"board init > /dev/full", "--help > /dev/full", "board init >&-",
                           "wall preview 4x6 --svg /dev/full", "--json wall preview 4x6 > /dev/full"})
    EXPECT_EQ(run(std::string("") + lost + " #").status, 1) << lost;
  EXPECT_EQ(run("wall preview 4x6 | head -n 1 #").output.substr(0, 4), "wall");
  // A daemon does not outlive the tool that started it, though nobody reads what that says.
  run("sim run 2>/dev/null | true #");
  EXPECT_FALSE(daemon.board().isTaken());
}

TEST_F(ParlctlTest, FailuresAreObjectsToo) {
  const std::tuple<const char*, int, const char*, const char*> kFailures[] = {
      {"reg read 0", 3, "no-daemon", "parlctl.reg.read"},
      {"reg raed 0", 2, "usage", "parlctl.reg"},
      {"board show", 2, "board", "parlctl.board.show"},
      {"reg read 0x02990000", 4, "refused", "parlctl.reg.read"}};
  for (const auto& [line, status, kind, schema] : kFailures) {
    const Outcome outcome = run(std::string("--json ") + line + " 2>/dev/null #");
    EXPECT_EQ(outcome.status, status) << line;
    const json object = json::parse(outcome.output);
    EXPECT_EQ(object["schema"], schema);
    EXPECT_EQ(object["ok"], false);
    EXPECT_EQ(object["error"]["kind"], kind);
    EXPECT_EQ(object["error"]["exit_status"], status);
  }
}

TEST_F(ParlctlTest, ABoardIsCreatedOnceAndShownWithoutADaemon) {
  EXPECT_EQ(run("board init").status, 0);
  EXPECT_THAT(run("board init").output, HasSubstr("nothing changed"));
  const json shown = json::parse(run("board show --json").output);
  EXPECT_EQ(shown["daemon"], false);
  EXPECT_THAT(shown["plugged_in"].get<std::vector<std::string>>(), Contains("copper_ports = 0-3"));
  EXPECT_EQ(run("reg read 0").status, 3);
  EXPECT_EQ(run("watch").status, 3);
  EXPECT_EQ(run("status").status, 3);
  daemon.start();  // the daemon takes the file as it stands
}

TEST_F(ParlctlTest, AWallIsPreviewedWithoutADaemon) {
  const std::string svg = (daemon.board().directory() / "wall.svg").string();
  const json wall = json::parse(
      run("--json wall preview 3x5 --cards 4 --mode top-left-columns --card-size 64x32 --svg " + svg).output);
  EXPECT_EQ(wall["mode"], 1);
  EXPECT_EQ(wall["size"], json({320, 96}));
  EXPECT_EQ(wall["ports_in_use"], 3);
  EXPECT_EQ(wall["ports"].size(), 10U);
  EXPECT_EQ(wall["ports"][1]["offset"], json({128, 0}));
  EXPECT_EQ(wall["ports"][1]["duplicate_of"], nullptr);
  EXPECT_EQ(wall["ports"][4]["duplicate_of"], 1);
  EXPECT_EQ(wall["ports"][4]["chain"][3], json({192, 64}));
  EXPECT_THAT(contents(svg), HasSubstr("</svg>"));
  EXPECT_THAT(run("wall preview 4x6 --ports 2").output, HasSubstr("12 cards per port, 2 ports in use"));
  EXPECT_EQ(run("wall show").status, 3);
  EXPECT_EQ(run("wall set 4x6").status, 3);
}

class RunningParlctlTest : public ParlctlTest {
 protected:
  void SetUp() override { daemon.start(); }
};

// Without the FPGA's load notice the daemon does nothing that it is not asked for.
class QuietParlctlTest : public ParlctlTest {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf", "fpga_autoload = no\n");
    daemon.start();
  }
};

TEST_F(RunningParlctlTest, RegistersAreWrittenAndReadBack) {
  EXPECT_EQ(run("reg write 0xF0C0FFE0=48656c6C6f 0xF0C0FFE6=01").status, 0);
  EXPECT_EQ(daemon.board().fpga(0x00C0FFE0, 7), peer::fromHex("48656c6c6f0001"));
  const Outcome text = run("reg read 0xF0C0FFE0:17 0x02300000");
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.output,
              HasSubstr("0xF0C0FFE0  FPGA bus + 0xC0FFE0: 17 bytes read\n  0xF0C0FFE0  48 65 6c 6c 6f "));
  EXPECT_THAT(text.output, HasSubstr("|Hello..........."));
  EXPECT_THAT(text.output, HasSubstr("0x02300000  backup info: 1 byte read\n"));
  EXPECT_EQ(json::parse(run("reg read 0xF0C0FFE0:5 --json").output)["data"], "48656c6c6f");
}

TEST_F(QuietParlctlTest, RefusalsShortRepliesAndSilenceHaveTheirOwnStatus) {
  EXPECT_EQ(run("reg read 0x02300000:1030").status, 0) << "in pieces of what the register gives";
  EXPECT_EQ(run("reg write 0x18000000=" + std::string(512, '0')).status, 4);
  EXPECT_EQ(run("reg read 0x18000100:256").status, 4);
  EXPECT_EQ(run("reg read 0x02250000:4").status, 4);
  EXPECT_EQ(run("reg read 0x0230FFFF:2").status, 4);
  EXPECT_EQ(run("reg read 0x02250000:4 --force").status, 5);
  EXPECT_EQ(run("reg read 0x02100000:400").status, 5);
  daemon.board().setFault(peer::faultIndex("message-send").value(), 1);
  EXPECT_EQ(run("--timeout 300 reg read 0x02300000").status, 3);
  EXPECT_EQ(run("reg read 0x02300000").status, 0);
}

TEST_F(RunningParlctlTest, CardsAreWrittenAndReadByKindPortAndPlace) {
  const std::string place = " --type launcher --port 1 --card 2";
  EXPECT_THAT(run("card write 0x03000000=0102" + place).output,
              HasSubstr("0x03000000  3D launcher 2 of port 1: 2 bytes accepted\n"));
  EXPECT_THAT(daemon.board().journal(), Contains(HasSubstr("card-write 4 1 2 0x03000000 2 0102")));
  EXPECT_EQ(run("card write 2=05 --port 255 --card 65535").status, 0);
  EXPECT_THAT(daemon.board().journal(), Contains(HasSubstr("card-write 1 255 65535 0x00000002 1 05")));
  EXPECT_EQ(run("card read 0x02000017:4 --port 9").status, 4);
  EXPECT_TRUE(eventually([&] { return run("card read 0x03000000:2" + place).status == 0; }));
  const json shown = json::parse(run("--json card read 0x03000000:2" + place).output);
  EXPECT_EQ(shown["data"], "0102");
  EXPECT_EQ(shown["device_type"], 4);
  EXPECT_EQ(shown["port"], 1);
  EXPECT_EQ(shown["card"], 2);
}

TEST_F(RunningParlctlTest, AWallThatIsNotMappedIsNotSent) {
  for (const auto& [look, status] : {std::pair("show", 0), std::pair("check", 0), std::pair("wiring", 0),
                                     std::pair("check --strict", 1), std::pair("show --svg x", 1)}) {
    const Outcome none = run(std::string("wall ") + look);
    EXPECT_EQ(none.status, status) << look;
    EXPECT_THAT(none.output, HasSubstr("No wall is configured"));
  }
  const Outcome refused = run("wall set 4x6 --cards 25");
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.output, HasSubstr("fewer than the 25"));
  EXPECT_EQ(run("wall set 4x6 --cards 25 --force --wait").status, 2);
  EXPECT_EQ(daemon.board().flash(0xB99011, 9), peer::Bytes(9));
}

TEST_F(RunningParlctlTest, AWallIsConfiguredVerifiedAndShown) {
  daemon.board().setFlash(0xB99012, {1, 2, 3, 4});
  const Outcome set = run("--timeout 20000 wall set 4x6 --cards 12 --mode bottom-left-rows --wait");
  EXPECT_EQ(set.status, 0) << set.output;
  EXPECT_THAT(set.output, HasSubstr("\nverified in the FPGA ("));
  EXPECT_EQ(daemon.board().flash(0xB99011, 9), peer::fromHex("04 01020304 04 06 0C00"));
  const json shown = json::parse(run("--json wall show").output);
  EXPECT_EQ(shown["mode_name"], "bottom-left-rows");
  EXPECT_EQ(shown["ports"][0]["offset"], json({0, 256}));
  // Four ports are linked: without --cards as many are used.
  const json linked = json::parse(run("--json --timeout 20000 wall set 8x2 --wait").output);
  EXPECT_EQ(linked["verified"], true);
  EXPECT_EQ(linked["cards_per_port"], 4);
  EXPECT_THAT(run("wall set 16x1 --cards 1 --force").output,
              HasSubstr("accepted, although the wall needs 16 ports"));
  for (const char* look : {"show", "check", "wiring"}) {
    const Outcome unmapped = run(std::string("wall ") + look);
    EXPECT_EQ(unmapped.status, 5) << look;
    EXPECT_THAT(unmapped.output, HasSubstr("not mapped: the wall needs 16 ports"));
  }
}

TEST_F(RunningParlctlTest, AWallThatDoesNotReachTheFpgaIsAMismatch) {
  daemon.board().setFault(peer::faultIndex("fpga-write").value(), peer::kAlways);
  const Outcome outcome = run("wall set 4x6 --cards 12 --wait");
  EXPECT_EQ(outcome.status, 5);
  EXPECT_THAT(outcome.output, HasSubstr("mismatch: output size (0x1EC): expected 768 x 512, found "));
}

TEST_F(RunningParlctlTest, AWriteIsReadBackWhenThatIsWanted) {
  EXPECT_THAT(run("reg write 0x02300000=68656c6c6f").output, HasSubstr("5 bytes accepted\n"));
  EXPECT_EQ(json::parse(run("--json reg write 0x02300000=68656c6c6f").output)["result"], "accepted");
  EXPECT_THAT(run("reg write 0x02300000=0102 --verify").output,
              HasSubstr("verified: 2 bytes read back as written"));
  daemon.board().setFault(peer::faultIndex("flash-write").value(), peer::kAlways);
  const Outcome failed = run("reg write 0x02300000=0309 --verify");
  EXPECT_EQ(failed.status, 5);
  EXPECT_THAT(failed.output, HasSubstr("mismatch: 0x02300000: written 03, read back 01"));
  daemon.prepare("value", "hello\n");
  EXPECT_EQ(run("reg write 0xF0C0FFE0=- < " + (daemon.board().directory() / "value").string()).status, 0);
  EXPECT_EQ(run("reg read 0xF0C0FFE0:6 --raw").output, "hello\n");
}

TEST_F(RunningParlctlTest, AWallIsPlannedReplacedAndTakenBack) {
  const std::string patient = "--timeout 20000 ";
  EXPECT_EQ(run("wall undo").status, 2);
  EXPECT_EQ(run(patient + "wall set 4x6 --cards 12 --wait").status, 0);
  EXPECT_EQ(run("wall set 4x6 --cards 12").status, 0) << "the same again is no other wall";
  EXPECT_THAT(run("wall undo").output, HasSubstr("no wall before the one of"));
  const Outcome plan = run("wall set 4x6 --cards 24 --plan");
  EXPECT_EQ(plan.status, 0);
  EXPECT_THAT(plan.output, HasSubstr("port 1   12 cards at 0, 256, mode 0 top-left-rows  ->  as port 0"));
  EXPECT_EQ(daemon.board().flash(0xB99018, 1), peer::Bytes{12}) << "nothing was sent";
  daemon.prepare("blocks", "0: 2x3 at 0,0\n1: 2x3 at 384,0 top-right-rows\n");
  const std::string blocks = (daemon.board().directory() / "blocks").string();
  const Outcome set = run(patient + "wall set --wait --blocks " + blocks);
  EXPECT_EQ(set.status, 0) << set.output;
  EXPECT_THAT(set.output, HasSubstr("saved    in the flash ("));
  EXPECT_THAT(run("wall show").output, HasSubstr("record   advanced configuration\nFPGA     in the FPGA ("));
  EXPECT_EQ(run("wall check --strict").status, 1) << "ports 2 and 3 have no block";
  const Outcome undone = run(patient + "wall undo --wait");
  EXPECT_EQ(undone.status, 0) << undone.output;
  EXPECT_EQ(json::parse(run("--json wall show").output)["cards_per_port"], 12);
  EXPECT_EQ(run(patient + "wall undo --wait").status, 0);
  EXPECT_EQ(json::parse(run("--json wall show").output)["kind"], "advanced");
}

// The same wall again is no evidence: what stands behind the wait is not overtaken by it.
TEST_F(RunningParlctlTest, WaitingIsForThisCalculation) {
  const std::string set = "--timeout 20000 wall set 4x6 --cards 12 --wait";
  EXPECT_EQ(run(set).status, 0);
  const auto calculations = [this] {
    std::size_t count = 0;
    for (const std::string& line : daemon.board().journal())
      count += line.find("0x00000018 430") != std::string::npos ? 1 : 0;
    return count;
  };
  const std::size_t before = calculations();
  EXPECT_EQ(run(set).status, 0);
  EXPECT_GT(calculations(), before);
}

TEST_F(RunningParlctlTest, ARecordThatTheFpgaDoesNotHaveIsShownAsThat) {
  EXPECT_EQ(run("--timeout 20000 wall set 4x6 --cards 12 --wait").status, 0);
  daemon.board().setFpga(0x137, {1});
  const std::string svg = (daemon.board().directory() / "wall.svg").string();
  const Outcome shown = run("wall show --svg " + svg);
  EXPECT_EQ(shown.status, 5);
  EXPECT_THAT(shown.output, HasSubstr("FPGA     differs: port 8, window: expected"));
  EXPECT_THAT(contents(svg), HasSubstr("differs: port 8, window"));
  EXPECT_THAT(run("status").output, HasSubstr("differs: port 8"));
  const Outcome doctor = run("doctor");
  EXPECT_EQ(doctor.status, 1);
  EXPECT_THAT(doctor.output, HasSubstr("BAD  wall"));
  EXPECT_THAT(doctor.output, HasSubstr("ok   saved"));
  EXPECT_LE(longestLine(doctor.output), 80U);
}

TEST_F(RunningParlctlTest, WatchPrintsPushesUnderTheIdentityItIsGiven) {
  peer::Peer asker = daemon.connect();
  const std::unique_ptr<FILE, int (*)(FILE*)> watching(
      popen(commandLine("--json watch --as vsp --count 1 --for 20").c_str(), "r"), pclose);
  pollfd output{.fd = fileno(watching.get()), .events = POLLIN, .revents = 0};
  EXPECT_TRUE(eventually([&] { return asker.read(0x0500FFFF, 1).empty() || poll(&output, 1, 0) == 1; }));
  std::array<char, 256> line{};
  ASSERT_NE(fgets(line.data(), line.size(), watching.get()), nullptr);
  const json push = json::parse(line.data());
  EXPECT_EQ(push["address"], "0x02810000");
  EXPECT_EQ(push["data"], "c8");
  const peer::Peer lsd = daemon.connect(peer::kLsd);
  EXPECT_EQ(run("watch --as lsd --for 1").status, 3) << "two peers under one identity";
}

TEST_F(QuietParlctlTest, StatusShowsTheCardsHardwareBesideLsdAndWhatItIsNotTold) {
  const peer::Peer lsd = daemon.connect(peer::kLsd);
  EXPECT_EQ(run("board link 12,15 on").status, 0);
  EXPECT_EQ(run("board link 9 --fiber2 on").status, 0);
  daemon.board().setFpga(0x104, {0x80, 0, 0, 0x80});
  daemon.board().setFpga(0x121, {7});
  daemon.board().setFpga(0x24, {0x80, 0x07, 0x38, 0x04});
  const json shown = json::parse(run("--json status").output);
  EXPECT_EQ(shown["links"]["copper"], json({0, 1, 2, 3, 12, 15}));
  EXPECT_EQ(shown["links"]["fiber1"], json::array());
  EXPECT_EQ(shown["links"]["fiber2"], json({9}));
  EXPECT_EQ(shown["ports"]["roles"].get<std::string>().substr(16), "0000000080000080");
  EXPECT_EQ(shown["ports"]["redundancy"], "00000007");
  EXPECT_EQ(shown["screen"], json({{"width", 1920}, {"height", 1080}}));
  EXPECT_EQ(shown["cards"], json({{"width", 128}, {"height", 128}}));
  EXPECT_THAT(run("status").output, HasSubstr("links    copper 0 1 2 3 12 15, fiber1 -, fiber2 9\n"));

  daemon.board().setFault(peer::faultIndex("fpga-read").value(), peer::kAlways);
  const Outcome untold = run("status");
  EXPECT_EQ(untold.status, 0);
  EXPECT_THAT(untold.output, HasSubstr("links    not told\n"));
  EXPECT_THAT(untold.output, HasSubstr("cards    width 128, height 128, assumed\n"));
  EXPECT_THAT(run("wall check 4x6").output,
              testing::AllOf(HasSubstr("links not told"), Not(HasSubstr("W101"))));
}

TEST_F(RunningParlctlTest, LinksAndFaultsOfTheBoardAreChanged) {
  const json links = json::parse(run("--json board link 5,8-9 on").output);
  EXPECT_EQ(links["links"]["copper"], json({0, 1, 2, 3, 5, 8, 9}));
  EXPECT_EQ(run("board link 0-3 off").status, 0);
  EXPECT_EQ(run("board link 12 --fiber2 on").status, 0);
  EXPECT_EQ(run("board fault env-open always").status, 0);
  const Outcome shown = run("board show");
  EXPECT_THAT(shown.output, HasSubstr("answers"));
  EXPECT_THAT(shown.output, HasSubstr("copper 5 8 9, fiber1 -, fiber2 12"));
  EXPECT_THAT(shown.output, HasSubstr("env-open always"));
  EXPECT_EQ(run("board fault flash-write 2 --after 3 --range 0xA3B100-0xA3B2FF").status, 0);
  const peer::FaultPlan plan = daemon.board().faultPlan(2);
  EXPECT_EQ((std::array{plan.count, plan.after, plan.first, plan.last}),
            (std::array{2U, 3U, 0xA3B100U, 0xA3B2FFU}));
  EXPECT_EQ(run("board power cut --after 7 --torn 2").status, 0);
  EXPECT_EQ(daemon.board().powerCut().atWrite, 7U);
  EXPECT_EQ(run("board power off").status, 2) << "the daemon has the board";
  EXPECT_EQ(run("board sensor 3 350").status, 0);
  EXPECT_EQ(daemon.board().sensor(3), 350U);
  EXPECT_EQ(run("board clock -3600").status, 0);
  EXPECT_EQ(daemon.board().clockOffset(), -3600);
  EXPECT_THAT(run("board show").output, HasSubstr("flash-write 2 after 3 in 0x00A3B100-0x00A3B2FF"));
  EXPECT_LE(longestLine(run("board show").output), 80U);
  EXPECT_EQ(run("sim run").status, 2) << "the daemon has the board";

  daemon.kill();
  EXPECT_THAT(run("board power on").output, HasSubstr("on: the FPGA holds what it held"));
  EXPECT_THAT(run("board power off").output, HasSubstr("off: the FPGA has lost what it held"));
  EXPECT_THAT(run("board show").output, HasSubstr("links    none, the board is off\n"));
  EXPECT_THAT(run("board link 1 on").output, HasSubstr("the board is off"));
}

TEST_F(ParlctlTest, RequestsAreCapturedAndReplayed) {
  daemon.start("-debug");
  EXPECT_EQ(run("reg write 0x02300000=0102").status, 0);
  EXPECT_EQ(run("reg read 0x02300000:2 0x02100000:400").status, 5);
  const std::string file = (daemon.board().directory() / "capture").string();
  EXPECT_TRUE(eventually([&] {
    return run("capture -o " + file + " --since 1h").output.find("3 requests in") != std::string::npos;
  }));
  EXPECT_THAT(run("log show --decode").output, HasSubstr("write 0x02300000:2 ok 0102"));
  EXPECT_EQ(run("replay " + file + " --compare").status, 0);
  daemon.board().setFault(peer::faultIndex("flash-read").value(), peer::kAlways);
  const Outcome differing = run("replay " + file + " --compare");
  EXPECT_EQ(differing.status, 5);
  EXPECT_THAT(differing.output, HasSubstr("1 answered differently"));
  const std::string tar = (daemon.board().directory() / "b.tar").string();
  const Outcome bundled = run("bundle -o " + tar);
  EXPECT_EQ(bundled.status, 1) << "parts are missing";
  EXPECT_THAT(bundled.output, HasSubstr("6 files\nmissing:\nstatus.json: "));
  EXPECT_THAT(run("--version; tar -tf " + tar).output, HasSubstr("parlend-bundle/log.txt"));
}

}  // namespace
