// Boards, sources and the EDIDs they present.
#include "process/inputSource.h"

#include <random>
#include <thread>

#include "../../platform/board_fixture.h"
#include "calc/inputmode.h"
#include "maps/flashmap.h"
#include "maps/inputsource.h"
#include "maps/registermap.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

class InputSourceTest : public BoardTest {
 protected:
  void TearDown() override {
    InputSource::deleteInstance();
    Data_Global::deleteInstance();
  }
  static InputSource& inputs() { return *InputSource::getInstance(); }
  static InputMode mode(int group) {
    EdidBytes edid{};
    return inputs().ReadEDIDInfo(group, edid) == 0 ? modeOfEdid(edid) : InputMode{};
  }
  static EdidBytes edidFor(uint16_t width, uint16_t height, uint16_t frame) {
    EdidBytes edid{};
    const DetailedTiming timing{0, width, 160, 48, 32, height, 40, 3, 5};
    const auto pixels = timing.pixelsOfFrame();
    const auto word = static_cast<uint16_t>((pixels * frame + 999'999) / 1'000'000);
    std::ranges::copy(edid_create_dtd(timing, word), edid.begin() + kEdidTimingAt);
    return edid;
  }
  // What a peer's write comes to.
  static void write(std::span<const uint8_t> data, std::size_t claimed = 0) {
    std::vector<uint8_t> payload(6);
    putLe32(payload, 0, reg::kEdid);
    putLe16(payload, 4, static_cast<uint16_t>(claimed != 0 ? claimed : data.size()));
    payload.insert(payload.end(), data.begin(), data.end());
    Tprocess::Sprocess_DoDoEDIDSpace(static_cast<int>(payload.size()),
                                     reinterpret_cast<char*>(payload.data()));
  }
  static void select(uint8_t source) {
    Data_Global::getInstance()->SendParameterReg[input::kSourceAt] = source;
  }
  Bytes storedModes() const { return flash(flash::kInputModes, kInSetParaBytes); }
  std::size_t loads() const {
    const auto lines = journal();
    return static_cast<std::size_t>(
        std::ranges::count_if(lines, [](const std::string& line) { return line.starts_with("edid-load"); }));
  }
};

TEST_F(InputSourceTest, BoardsOfAKindAreNumberedAndEachHasTheChannelOfItsSlot) {
  start(
      "input = 0x10 dvi\ninput = 0x01 hdmi14\ninput = 0x12 hdmi14\ninput = 0x20 dvi\ninput = 0x30 dp12\n"
      "input = 0x63 dual-dvi\ninput = 0x40 dual-dvi\ninput = 0x41 dvi\n");
  inputs().InputBoardInit();
  inputs().InputBoardInit();  // looks anew, not further
  const struct {
    const char* name;
    uint8_t code, channel;
  } expected[] = {{"DVI", 0x00, 1},       {"HDMI1.4-1", 0x61, 4}, {"HDMI1.4-2", 0x62, 255},
                  {"DVI", 0x01, 2},       {"", kNoSourceCode, 3}, {"DUAL_DVI-1", 0x51, 255},
                  {"DUAL_DVI-2", 0x52, 0}};
  ASSERT_EQ(inputs().sources(), std::size(expected)) << "no more than seven boards";
  for (std::size_t n = 0; n < std::size(expected); ++n) {
    const auto source = inputs().GetSourceByGroup(static_cast<int>(n));
    ASSERT_TRUE(source);
    EXPECT_STREQ(inputs().name(n).name.data(), expected[n].name);
    EXPECT_EQ(inputs().name(n).lenName, std::string(expected[n].name).size());
    EXPECT_EQ(inputs().name(n).cardNO, n);
    EXPECT_EQ(inputs().name(n).sourceCode, expected[n].code);
    EXPECT_EQ(source->src_code, expected[n].code);
    EXPECT_EQ(source->input_ch, expected[n].channel);
    EXPECT_EQ(source->signal_state, 3);
  }
  EXPECT_FALSE(inputs().GetSourceByGroup(7));
  EXPECT_FALSE(inputs().GetSourceByGroup(-1));
}

TEST_F(InputSourceTest, AnEdidThatCannotBeReadLeavesTheBufferAlone) {
  start();
  EdidBytes edid{};
  EXPECT_EQ(inputs().ReadEDIDInfo(0, edid), -1) << "no board has been looked for";
  inputs().InputBoardInit();
  failNext(Fault::EdidRead, 1);
  EXPECT_NE(inputs().ReadEDIDInfo(0, edid), 0);
  EXPECT_EQ(edid[1], 0);
  EXPECT_EQ(inputs().ReadEDIDInfo(0, edid), 0);
  EXPECT_EQ(edid[1], 0xFF);
}

TEST_F(InputSourceTest, WrittenModeComesBackCleanAndAgainAfterARestart) {
  start("input = 0x10 dvi\ninput = 0x01 hdmi14\n");
  inputs().InputBoardInit();
  EXPECT_EQ(loads(), 0U) << "nothing has been stored yet";
  select(0x62);
  auto written = edidFor(1920, 1200, 6000);
  written[3] = 0x77;  // of what a peer writes only the timing counts
  write(written);
  EXPECT_EQ(mode(1), modeOfEdid(written));
  EXPECT_EQ(mode(0), (InputMode{1920, 1080, 6000})) << "the base of an input that nobody wrote";
  select(0x61);
  const EdidBytes other = edidFor(1024, 600, 5000);
  write(std::span(other).first(kEdidBlock));
  EXPECT_EQ(mode(0).width, 1024);
  EdidBytes edid{};
  inputs().ReadEDIDInfo(0, edid);
  EXPECT_EQ(std::string(edid.begin() + 0x4D, edid.begin() + 0x4D + 13), "ORVE DUAL_DVI")
      << "the name of a DVI input";
  inputs().ReadEDIDInfo(1, edid);
  EXPECT_EQ(ResT_verify_EDID(edid), EdidCheck::kSound);

  const Bytes stored = storedModes();
  EXPECT_EQ(le16(stored, 6), 1920);
  EXPECT_EQ(le16(stored, 10), modeOfEdid(written).frame);
  InputSource::deleteInstance();
  startAgain();
  std::filesystem::remove(file("hw/edid-16.bin"));
  std::filesystem::remove(file("hw/edid-1.bin"));
  inputs().InputBoardInit();
  EXPECT_EQ(mode(0).width, 1024);
  EXPECT_EQ(mode(1).height, 1200);
  select(0x62);
  write(edidFor(800, 600, 6000));
  EXPECT_EQ(flash(flash::kInputModes, 6), Bytes(stored.begin(), stored.begin() + 6))
      << "the first write of a process keeps what others have stored";
  failNext(Fault::FlashRead, kEveryCall);
  write(edidFor(801, 600, 6000));
  EXPECT_EQ(le16(storedModes(), 6), 801) << "what is known needs no read";
}

TEST_F(InputSourceTest, EveryInputThatCanBeStartsWithItsStoredMode) {
  std::string conf;
  Bytes modes;
  for (unsigned group = 0; group < InputSource::kBoards; ++group) {
    conf += "input = " + std::to_string(0x10 + group) + " dvi\n";
    for (const unsigned value : {800 + 8 * group, 600 + group, 6000U}) {
      modes.push_back(static_cast<uint8_t>(value));
      modes.push_back(static_cast<uint8_t>(value >> 8));
    }
  }
  start(conf);
  setFlash(flash::kInputModes, modes);
  inputs().InputBoardInit();
  for (unsigned group = 0; group < InputSource::kBoards; ++group) {
    EXPECT_EQ(mode(static_cast<int>(group)).width, 800 + 8 * group);
    EXPECT_EQ(mode(static_cast<int>(group)).height, 600 + group);
  }
}

TEST_F(InputSourceTest, WriteIsForTheGroupOfTheSourceThatIsShown) {
  start("input = 0x10 dvi\ninput = 0x20 dvi\ninput = 0x30 dvi\n");
  inputs().InputBoardInit();
  const struct {
    uint8_t source;
    std::size_t group;
  } cases[] = {{0x61, 0}, {0x62, 1}, {0x50, 2}, {0x00, 0}, {0xFF, 0}};
  uint16_t width = 640;
  for (const auto& c : cases) {
    select(c.source);
    write(edidFor(++width, 480, 6000));
    EXPECT_EQ(le16(storedModes(), 6 * c.group), width);
    EXPECT_EQ(mode(static_cast<int>(c.group)).width, width);
  }
}

TEST_F(InputSourceTest, WriteOfAnyOtherLengthIsNothing) {
  start();
  inputs().InputBoardInit();
  const std::vector<uint8_t> bytes(300, 0x11);
  for (const std::size_t length : {1U, 127U, 129U, 200U, 255U, 257U, 300U}) {
    write(std::span(bytes).first(length));
    EXPECT_EQ(storedModes(), Bytes(kInSetParaBytes)) << length;
  }
  write(std::span(bytes).first(100), 128);  // says more than it brings
  EXPECT_EQ(storedModes(), Bytes(kInSetParaBytes));
}

TEST_F(InputSourceTest, ModeThatCannotBeIsStoredAndNotLoaded) {
  start();
  inputs().InputBoardInit();
  EdidBytes empty{};
  write(empty);
  EXPECT_EQ(loads(), 0U);
  EdidBytes fast = edidFor(8, 8, 60);
  putLe16(fast, kEdidTimingAt, 65535);
  write(fast);
  EXPECT_EQ(le16(storedModes(), 0), 8);
  EXPECT_EQ(le16(storedModes(), 4), 0) << "a frame beyond 65535";
  EdidBytes large{};  // without any blanking its clock can be said, with blanking it cannot
  std::ranges::copy(edid_create_dtd({0, 4095, 0, 0, 0, 4095, 0, 0, 0}, 65400), large.begin() + kEdidTimingAt);
  write(large);
  EXPECT_EQ(le16(storedModes(), 0), 4095);
  EXPECT_EQ(loads(), 0U);
  EXPECT_EQ(mode(0), (InputMode{1920, 1080, 6000}));
}

TEST_F(InputSourceTest, SourcesOfOtherKindsGetNoEdid) {
  for (const char* type : {"dual-dvi", "sdi3g", "vga", "hdmi20", "dp12"}) {
    SCOPED_TRACE(type);
    start(std::string("input = 1 ") + type + "\ninput = 2 dvi\n");
    inputs().InputBoardInit();
    inputs().EDIDSetByMode(0, 1920, 1080, 6000);
    EXPECT_EQ(loads(), 0U) << "and those after it wait for a write";
    inputs().EDIDSetByMode(1, 800, 600, 6000);
    EXPECT_EQ(mode(1).width, 800);
    InputSource::deleteInstance();
    stop();
  }
  start();
  inputs().InputBoardInit();
  for (const int group : {-1, 2, 8, 9, 255}) inputs().EDIDSetByMode(group, 800, 600, 6000);
  for (const int group : {-1, 9, 1000}) inputs().EDIDCommStorage(group, edidFor(800, 600, 6000));
  EXPECT_EQ(loads(), 0U);
  inputs().EDIDCommStorage(8, edidFor(800, 600, 6000));
  EXPECT_EQ(le16(storedModes(), 48), 800) << "stored before anyone asks for a source";
}

TEST_F(InputSourceTest, EveryCallThatFailsCostsItsOwnStepOnly) {
  start("input = 1 dvi\ninput = 2 dvi\n");
  setFlash(flash::kInputModes, {0x80, 0x02, 0xE0, 0x01, 0x70, 0x17, 0x20, 0x03, 0x58, 0x02, 0x70, 0x17});
  const Bytes before = storedModes();
  inputs().InputBoardInit();
  EXPECT_EQ(mode(0).width, 640);
  EXPECT_EQ(mode(1).width, 800);

  failNext(Fault::EdidLoad, 1);
  select(0x62);
  write(edidFor(1280, 720, 6000));
  EXPECT_EQ(mode(1).width, 800);
  EXPECT_EQ(le16(storedModes(), 6), 1280) << "stored all the same";
  inputs().InputBoardInit();
  EXPECT_EQ(mode(1).width, 1280);

  InputSource::deleteInstance();
  inputs().InputBoardInit();
  setFlash(flash::kInputModes, before);
  failNext(Fault::FlashRead, 3);
  write(edidFor(1600, 1200, 6000));
  EXPECT_EQ(mode(1).width, 1600);
  EXPECT_EQ(storedModes(), before) << "nothing goes over modes that could not be read";
  failNext(Fault::FlashWrite, 3);
  write(edidFor(1024, 768, 6000));
  EXPECT_EQ(mode(1).width, 1024);
  EXPECT_EQ(storedModes(), before);
  failNext(Fault::FlashRead, 3);
  inputs().InputBoardInit();
  EXPECT_EQ(mode(1).width, 1024) << "what was loaded stays";
}

TEST_F(InputSourceTest, RequestsMayLookForBoardsWhileEdidsAreWritten) {
  start("input = 1 dvi\ninput = 2 hdmi14\n");
  inputs().InputBoardInit();
  select(0x62);
  std::atomic<bool> done{false};
  std::thread receive([&done] {
    EdidBytes edid{};
    while (!done) {
      inputs().InputBoardInit();
      EXPECT_EQ(inputs().ReadEDIDInfo(1, edid), 0);
      EXPECT_EQ(ResT_verify_EDID(edid), EdidCheck::kSound);
    }
  });
  for (uint16_t n = 0; n < 60; ++n) write(edidFor(static_cast<uint16_t>(700 + n), 500, 6000));
  done = true;
  receive.join();
  EXPECT_EQ(mode(1).width, 759) << "the input has the mode that was stored last";
}

}  // namespace
}  // namespace ORVE_MCUC
