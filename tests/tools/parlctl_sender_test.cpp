// parlctl's nouns of the sending card against a running daemon.
#include <fstream>

#include "parlctl_fixture.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

namespace {

class ParlctlSenderTest : public ParlctlFixture {
 protected:
  void succeeds(const std::string& arguments, const std::string& text) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments << ": " << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr(text)) << arguments;
  }
};

TEST_F(ParlctlSenderTest, FeaturesAreWrittenAndReadByName) {
  daemon.start();
  succeeds("feature set power-on-time=48 screen-width=1920", "verified: screen-width 1920");
  succeeds("feature get power-on-time 0x24:2", "48");
  succeeds("feature set 0x02000030=0a0b", "verified: 0x02000030 0a0b");
  EXPECT_EQ(daemon.board().fpga(0x30, 2), (peer::Bytes{0x0A, 0x0B}));
  const json listed = json::parse(run("--json feature list --refresh").output);
  EXPECT_EQ(listed["schema"], "parlctl.feature.list");
  for (const json& feature : listed["features"])
    EXPECT_TRUE(feature["name"] != "screen-width" || feature["value"] == 1920);
}

TEST_F(ParlctlSenderTest, WhatMakesNoSenseIsNotSent) {
  daemon.start("-debug");
  for (const char* line : {"feature set",
                           "feature set screen-width",
                           "feature set screen-width=65536",
                           "feature get screen-widht",
                           "feature set power-on-time=1 screen-width=x",
                           "feature set links-of-ports-0-3=0f",
                           "feature set 0x1ff=0102",
                           "feature get 0x200",
                           "feature get 0x10:512",
                           "feature get 0x02000200",
                           "feature set clock=2023-02-29T00:00:00",
                           "clock set 2024-01-01",
                           "clock set 1999-01-01T00:00:00",
                           "role king",
                           "hwinfo set serial 0123",
                           "hwinfo set serial 012345678901234g",
                           "hwinfo set mac 01:00:00:00:00:01",
                           "hwinfo set model 12345",
                           "reset factory",
                           "reset factory --type 3",
                           "test fpga",
                           "backup /nowhere/file",
                           "restore /nowhere"})
    EXPECT_EQ(run(line).status, 2) << line << ": " << run(line).output;
  EXPECT_THAT(daemon.trace(), Not(HasSubstr("Begin Deal DataBlock")));
  EXPECT_THAT(run("feature get screen-widht").output, HasSubstr("screen-width"));
  EXPECT_EQ(run("role").status, 0);
  EXPECT_THAT(daemon.trace(), HasSubstr("Begin Deal DataBlock"));
  daemon.kill();
  EXPECT_EQ(run("role").status, 3);
}

TEST_F(ParlctlSenderTest, RoleClockAndIdentityAreSetAndSeen) {
  daemon.start();
  succeeds("role slave", "verified: the card is a slave");
  EXPECT_EQ(daemon.board().flash(0xA60010, 1), peer::Bytes{1});
  succeeds("role", "slave");
  succeeds("role master", "verified");
  succeeds("clock set 2024-02-29T23:59:50", "verified");
  EXPECT_THAT(run("clock get").output,
              testing::AnyOf(HasSubstr("2024-02-29T23:59:5"), HasSubstr("2024-03-01")));
  succeeds("hwinfo set serial 0123456789abcdef", "verified: serial 0123456789abcdef");
  succeeds("hwinfo set mac 02:00:00:00:00:01", "verified: mac 02:00:00:00:00:01");
  succeeds("hwinfo set model 4d01", "verified: model 4d01");
  EXPECT_EQ(json::parse(run("--json hwinfo show").output)["serial"], "0123456789abcdef");
  succeeds("save", "accepted");
  succeeds("reload", "accepted");
}

TEST_F(ParlctlSenderTest, ThePictureIsShiftedInBypassModeAlone) {
  daemon.start();
  succeeds("feature set screen-width=1920 screen-height=1080 output-width=1920 output-height=1080",
           "verified");
  succeeds("offset mode bypass", "verified: offset-mode bypass");
  succeeds("offset set 16 0 --left", "output 1936 x 1080");
  EXPECT_EQ(json::parse(run("--json offset show").output)["signed_x"], -16);
  succeeds("offset set 8 4", "verified: offset 8, 4");
  succeeds("offset mode normal", "verified");
  EXPECT_EQ(run("offset set 8 4").status, 2);
}

TEST_F(ParlctlSenderTest, TheFpgaTestKeepsTheOutputHeight) {
  daemon.start();
  succeeds("feature set output-width=1920 output-height=1080", "verified");
  succeeds("test fpga start", "the output height is as it was");
  succeeds("test fpga stop", "the output height is as it was");
  succeeds("feature get output-height", "1080");
}

TEST_F(ParlctlSenderTest, PortsAreComparedWithTheCalculation) {
  daemon.start();
  succeeds("wall set 4x6 --cards 12 --wait", "");
  const json shown = json::parse(run("--json ports").output);
  EXPECT_EQ(shown["ports"][0]["cards"], 12);
  EXPECT_EQ(shown["ports"][1]["entries"].size(), 4U);
  succeeds("ports", "in the FPGA");
  EXPECT_EQ(run("reg write 0x03000000=ffff --verify").status, 0);
  EXPECT_EQ(run("ports").status, 5);
}

TEST_F(ParlctlSenderTest, ABackupBringsBackWhatWasChanged) {
  daemon.start();
  const std::string file = path("backup.json");
  succeeds("wall set 4x6 --cards 12 --wait", "");
  succeeds("reg write 0x02300000=68656c6c6f 0x05000100=0102 --verify", "verified");
  succeeds("feature set power-on-time=48", "verified");
  succeeds("backup " + file, "sections");
  succeeds("restore " + file + " --dry-run", "0 differences");
  const peer::Bytes tables = daemon.board().fpga(0x600000, 40960);

  succeeds("wall set 2x2 --cards 4 --wait", "");
  succeeds("reg write 0x02300000=00 0x05000100=ff --verify", "verified");
  succeeds("feature set power-on-time=50", "verified");
  const Outcome differences = run("restore " + file + " --dry-run");
  EXPECT_EQ(differences.status, 1) << differences.output;
  EXPECT_THAT(differences.output, HasSubstr("power-on-time"));
  succeeds("feature get power-on-time", "50");
  succeeds("restore " + file, "verified: the card is as in the backup");
  EXPECT_EQ(daemon.board().fpga(0x600000, 40960), tables);
  succeeds("reg read 0x02300000:5", "68 65 6c 6c 6f");
  succeeds("restore " + file + " --dry-run", "0 differences");
}

TEST_F(ParlctlSenderTest, AFileThatIsNoBackupIsNotRestored) {
  daemon.start("-debug");
  for (const char* text :
       {"", "x", "[]", "{}", R"({"format":"parlctl.backup","version":2,"sections":{"wall":""}})",
        R"({"format":"parlctl.backup","version":1,"sections":{}})",
        R"({"format":"parlctl.backup","version":1,"sections":{"wall":7}})",
        R"({"format":"parlctl.backup","version":1,"sections":{"wall":"00"}})",
        R"({"format":"parlctl.backup","version":1,"sections":{"flash":"00"}})"}) {
    std::ofstream(path("file")) << text;
    EXPECT_EQ(run("restore " + path("file")).status, 2) << text;
  }
  EXPECT_THAT(daemon.trace(), Not(HasSubstr("Begin Deal DataBlock")));
}

// Each type whole: request, three steps of the tick, reboot, first boot.
class ParlctlResetTest : public ParlctlSenderTest, public testing::WithParamInterface<int> {};

TEST_P(ParlctlResetTest, TheDeviceComesBackWithAWallOfOneCard) {
  if (!DaemonProcess::canReboot()) GTEST_SKIP() << "an emulated daemon cannot start again";
  const int type = GetParam();
  daemon.start();
  succeeds("wall set 4x6 --cards 12 --wait", "");
  daemon.board().setFlash(0x003000, {1, 2, 3, 4});
  daemon.board().setFlash(0x00201A, {7});
  succeeds("reset factory --yes-reset --type " + std::to_string(type), "verified: the device is back");
  EXPECT_EQ(daemon.board().flash(0xC20030, 4), (peer::Bytes{0, 1, 1, 1}));
  EXPECT_EQ(daemon.board().flash(0x00201A, 1), peer::Bytes{static_cast<uint8_t>(type == 1 ? 0 : 7)});
  const bool kept = daemon.board().flash(0x003000, 4) == peer::Bytes{1, 2, 3, 4};
  EXPECT_EQ(kept, type == 2);
  EXPECT_THAT(run("wall show").output, HasSubstr("1 x 1"));
}

INSTANTIATE_TEST_SUITE_P(Types, ParlctlResetTest, testing::Values(0, 1, 2));

}  // namespace
