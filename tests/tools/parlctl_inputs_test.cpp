// parlctl input and parlctl cabfile against a running daemon.
#include "parlctl_fixture.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

class ParlctlInputsTest : public ParlctlFixture {
 protected:
  std::string stored(int number) const {
    return contents(daemon.board().directory() /
                    ("usr/orve/etc/lsd/cabCfg/RvCfgFile_" + std::to_string(number) + ".rcfgx"));
  }
};

TEST_F(ParlctlInputsTest, FilesAreCompiledStoredListedFetchedAndPlayed) {
  daemon.start();
  const std::string text = file("a.txt", "0x02000001 = 55\npause 5\n0x03000000 = 01 02 03\n");
  const std::string compiled = daemon.board().directory() / "a.rcfgx";
  EXPECT_EQ(run("cabfile compile " + text + " --output " + compiled).status, 0);
  const std::string large = file("b.rcfgx", std::string(32, '\0') + std::string(5000, 'x'));

  const Outcome put = run("cabfile put " + compiled + " " + large);
  EXPECT_EQ(put.status, 0) << put.output;
  EXPECT_THAT(put.output, HasSubstr("verified: the copy in flash of 2 files"));
  EXPECT_TRUE(eventually([&] { return stored(1).size() == 5032; }));
  EXPECT_EQ(stored(0), contents(compiled));

  const json listed = json::parse(run("--json cabfile list").output);
  EXPECT_EQ(listed["files"][0]["name"], "a.rcfgx");
  EXPECT_EQ(listed["files"][0]["items"], 2);
  EXPECT_EQ(listed["files"][0]["milliseconds"], 35);
  EXPECT_EQ(run("cabfile get 0 --text").output, contents(text));

  daemon.board().setFlash(0xE00800, peer::Bytes(64));  // the index: what it says of the sizes is gone
  EXPECT_EQ(run("cabfile get 0 --output " + path("fetched")).status, 0);
  EXPECT_EQ(contents(path("fetched")), contents(compiled)) << "no byte behind the last item";

  const Outcome played = run("cabfile play 0");
  EXPECT_EQ(played.status, 0) << played.output;
  EXPECT_EQ(run("card read 0x02000001 --port 1 --card 3 --json").status, 0);
  EXPECT_THAT(run("card read 0x03000000:3 --port 1 --card 3").output, HasSubstr("01 02 03"));
}

TEST_F(ParlctlInputsTest, FilesThatMakeNoSenseAreNotSent) {
  daemon.start();
  const std::string cut = file("cut", std::string("\1\0", 2) + std::string(30, '\0'));
  EXPECT_EQ(run("cabfile put " + cut).status, 2);
  EXPECT_EQ(stored(0), "");
  EXPECT_EQ(run("cabfile put --force " + cut).status, 0);
  EXPECT_EQ(run("cabfile get 0").status, 5);
  EXPECT_EQ(run("cabfile get 1").status, 2);
  EXPECT_EQ(run("cabfile play 32").status, 2);
  EXPECT_EQ(run("cabfile put /nowhere").status, 2);
  EXPECT_EQ(run("cabfile compile " + file("bad", "pause 1")).status, 2);
  EXPECT_EQ(run("cabfile decompile " + cut).status, 2);
  daemon.kill();
  EXPECT_EQ(run("cabfile list").status, 3);
}

TEST_F(ParlctlInputsTest, AnInputIsDecoded) {
  daemon.start();
  const std::string raw = daemon.board().directory() / "raw";
  const Outcome shown = run("input edid show --raw " + raw);
  EXPECT_EQ(shown.status, 0) << shown.output;
  EXPECT_THAT(shown.output, HasSubstr("1920 x 1080 at 60.00 Hz, clock 148.50 MHz"));
  EXPECT_EQ(contents(raw).size(), 256U);
  const json listed = json::parse(run("--json input list").output);
  EXPECT_EQ(listed["inputs"][0]["edid"]["height"], 1080);
  EXPECT_EQ(run("input edid show D").status, 2);
  EXPECT_EQ(run("input edid set A").status, 2);
  EXPECT_EQ(run("input edid set A 4095x4095@60").status, 2);
  EXPECT_EQ(run("input edid set A --file " + file("short", "x")).status, 2);
  for (const char* endless : {"input edid set A --file /dev/zero", "cabfile put --force /dev/zero"})
    EXPECT_EQ(run(endless).status, 2) << endless;
}

TEST_F(ParlctlInputsTest, AnInputIsSetToAnotherModeAndTheSelectionComesBack) {
  daemon.prepare("board.conf", "input = 0x10 dvi\ninput = 0x01 hdmi14\n");
  daemon.start();
  ASSERT_EQ(run("reg write 0x020001A5=61 --verify").status, 0);
  const Outcome standard = run("input edid set A 1920x1080@59.94");
  EXPECT_EQ(standard.status, 0) << standard.output;
  EXPECT_THAT(standard.output,
              HasSubstr("verified: input A asks for 1920 x 1080 at 59.94 Hz, a standard timing"));
  const Outcome computed = run("input edid set B 1024x600@50");
  EXPECT_EQ(computed.status, 0) << computed.output;
  EXPECT_THAT(computed.output, HasSubstr("computed timing"));
  EXPECT_THAT(run("reg read 0x020001A5").output, HasSubstr("61"));
  EXPECT_EQ(contents(daemon.board().directory() / "hw/edid-1.bin").substr(0x38, 1), std::string(1, '\0'));
  EXPECT_EQ(run("input edid set C 1024x600@50").status, 5) << "there is no third input";
  const std::string raw = daemon.board().directory() / "raw";
  EXPECT_EQ(run("input edid show A --raw " + raw).status, 0);
  EXPECT_EQ(run("input edid set B --file " + raw).status, 0);
  const std::string list = run("--json input list --all").output;  // behind the notes of what is selected
  ASSERT_NE(list.find('{'), list.npos) << list;
  const json listed = json::parse(list.substr(list.find('{')));
  EXPECT_EQ(listed["inputs"][1]["edid"]["hertz"], 59.94);
}

}  // namespace
