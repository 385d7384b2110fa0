// parlctl hdr, picture, gamma, pattern, warmup and devcom against a running daemon.
#include <fstream>

#include "parlctl_fixture.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

class ParlctlPictureTest : public ParlctlFixture {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf", "card_brightness = 0x80\n");
    daemon.start();
  }
  json told(const std::string& arguments) const { return json::parse(run("--json " + arguments).output); }
  // Runs it and expects the status and a piece of the text.
  void expect(const std::string& arguments, int status, const std::string& piece) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, status) << arguments << '\n' << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr(piece)) << arguments;
  }
  void writeTable(const std::string& name, int entries, int last, int dip) const {
    std::ofstream file(path(name));
    file << "red,green,blue\n";
    for (int i = 0; i < entries; ++i) {
      const int value = i == entries - 1 ? last : i * 16 - (i == dip ? 17 : 0);
      file << value << ',' << value << ',' << value << '\n';
    }
  }
};

TEST_F(ParlctlPictureTest, HdrIsSwitchedVerifiedAndSeenInTheFpga) {
  expect("hdr hdr10 --peak 800 --ambient 40 --min 7", 0, "verified: ");
  const json shown = told("hdr show");
  EXPECT_EQ(shown["schema"], "parlctl.hdr.show");
  EXPECT_EQ(shown["type"], "hdr10");
  EXPECT_EQ(shown["peak"], 800);
  EXPECT_EQ(shown["ambient"], 40);
  EXPECT_EQ(shown["min"], 7);
  EXPECT_EQ(shown["hdr_loaded"], true);
  expect("hdr hlg --class 3", 0, "verified: ");
  EXPECT_EQ(told("hdr show")["class"], 3);
  daemon.board().setFpga(0x1EA, {0xFF});
  expect("hdr show", 5, "differs: ");
  expect("hdr off", 0, "verified: settings as written, the FPGA has gamma tables");
  expect("hdr hdr10 --ambient 256", 2, "above 255");
  EXPECT_EQ(told("hdr show")["type"], "off");
}

TEST_F(ParlctlPictureTest, PictureWarmUpAndCommunicationMode) {
  expect("picture set --saturation 60 --contrast 50 --hue 350", 0, "verified: ");
  expect("picture set --hue 10", 0, "saturation 60, contrast 50, hue 10");
  for (const char* bad : {"picture set", "picture set --contrast 256", "picture set --hue -1"})
    EXPECT_EQ(run(bad).status, 2) << bad;
  EXPECT_EQ(told("picture show")["hue"], 10);
  expect("warmup set 1 30", 0, "verified: ");
  EXPECT_EQ(told("warmup show")["time"], 30);
  expect("devcom set 2", 0, "verified: ");
  EXPECT_EQ(told("devcom show")["variable"], "2");
  EXPECT_EQ(run("devcom set 3").status, 2);
}

TEST_F(ParlctlPictureTest, TablesAreCheckedStoredAndComparedWithTheFpga) {
  ASSERT_EQ(run("gamma make --exponent 2.2 --to " + path("g22.csv") + " --svg " + path("g.svg")).status, 0);
  expect("gamma load " + path("g22.csv"), 0, "verified: ");
  expect("gamma show --svg " + path("shown.svg"), 0, "red: in the middle like exponent 2.20");
  EXPECT_THAT(contents(path("shown.svg")), HasSubstr("built-in curve"));
  writeTable("linear.csv", 4096, 65535, -1);
  expect("gamma load --bank 10 " + path("linear.csv"), 0, "verified: ");
  EXPECT_EQ(told("gamma show")["channels"]["blue"][1000], 16000);
  struct Bad {
    int entries, last, dip;
    const char* why;
  };
  for (const Bad& bad : {Bad{4095, 65535, -1, "4095 entries"}, Bad{4096, 65534, -1, "instead of"},
                         Bad{4096, 65535, 9, "entry 9 is below"}}) {
    writeTable("bad.csv", bad.entries, bad.last, bad.dip);
    expect("gamma load " + path("bad.csv"), 2, bad.why);
  }
  EXPECT_EQ(run("gamma load " + path("nowhere.csv")).status, 2);
  EXPECT_EQ(run("gamma make --pq --hlg").status, 2);
  EXPECT_EQ(told("gamma show")["channels"]["red"][1000], 16000) << "nothing was sent";
  ASSERT_EQ(run("hdr hlg").status, 0);
  expect("gamma load " + path("g22.csv"), 0, "accepted: HDR is on");
  expect("hdr off", 0, "verified: ");
}

TEST_F(ParlctlPictureTest, PatternsAreLoadedWithThePhasesOfTheirPreview) {
  expect("pattern pixels 8x8 --first 3,0", 0, "verified: ");
  EXPECT_EQ(daemon.board().fpga(0xA00025, 4), (peer::Bytes{5, 0, 0, 0}));
  expect("pattern blocks 64x32 --first=100,-10", 0, "verified: ");
  EXPECT_EQ(daemon.board().fpga(0xA0002D, 4), (peer::Bytes{2, 0, 0, 0}));
  EXPECT_EQ(daemon.board().fpga(0xA00031, 8), (peer::Bytes{64, 0, 32, 0, 28, 0, 10, 0}));
  const json preview = told("pattern preview blocks 64x32 --first=100,-10 --wall 640x360");
  EXPECT_EQ(preview["phase"], (json{28, 10}));
  EXPECT_EQ(preview["count"], (json{2, 0}));
  expect("pattern preview pixels 8x8 --first 3,0 --wall 12x2 --svg " + path("p.svg"), 0,
         "...#.......#\n............");
  EXPECT_THAT(contents(path("p.svg")), HasSubstr("X, pixels"));
  for (const char* bad : {"pixels 8x8 --first 8,0", "pixels 8x0", "blocks 64x32 --first=-64,0", "blocks 64"})
    EXPECT_EQ(run(std::string("pattern ") + bad).status, 2) << bad;
  EXPECT_EQ(daemon.board().fpga(0xA00020, 1), peer::Bytes{2}) << "nothing was sent";
  expect("pattern off", 0, "verified: ");
  EXPECT_EQ(daemon.board().fpga(0xA00020, 1), peer::Bytes{0});
}

}  // namespace
