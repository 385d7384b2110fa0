// The list of video inputs.
#include "process/inputSource.h"

#include "../../platform/board_fixture.h"

namespace ORVE_MCUC {
namespace {

class InputSourceTest : public BoardTest {
 protected:
  void TearDown() override { InputSource::deleteInstance(); }
};

TEST_F(InputSourceTest, BoardsOfAKindAreNumberedAndEachHasTheChannelOfItsSlot) {
  start("input = 0x10 dvi\ninput = 0x01 hdmi14\ninput = 0x12 hdmi14\ninput = 0x20 dvi\ninput = 0x30 dp12\n");
  InputSource& inputs = *InputSource::getInstance();
  inputs.InputBoardInit();
  inputs.InputBoardInit();  // looks anew, not further
  const struct {
    const char* name;
    uint8_t code, channel;
  } expected[] = {
      {"DVI", 0x00, 1}, {"HDMI1.4-1", 0x61, 4}, {"HDMI1.4-2", 0x62, 255}, {"DVI", 0x01, 2}, {"", 0, 3}};
  ASSERT_EQ(inputs.sources(), std::size(expected));
  for (std::size_t n = 0; n < std::size(expected); ++n) {
    const source_t* source = inputs.GetSourceByGroup(static_cast<int>(n));
    ASSERT_NE(source, nullptr);
    EXPECT_STREQ(inputs.name(n).name.data(), expected[n].name);
    EXPECT_EQ(inputs.name(n).lenName, std::string(expected[n].name).size());
    EXPECT_EQ(source->src_code, expected[n].code);
    EXPECT_EQ(source->input_ch, expected[n].channel);
  }
  EXPECT_EQ(inputs.GetSourceByGroup(5), nullptr);
}

TEST_F(InputSourceTest, AnEdidThatCannotBeReadLeavesTheBufferAlone) {
  start();
  InputSource& inputs = *InputSource::getInstance();
  std::array<uint8_t, kEdidBytes> edid{};
  EXPECT_EQ(inputs.ReadEDIDInfo(0, edid), -1) << "no board has been looked for";
  inputs.InputBoardInit();
  failNext(simboard::Fault::EdidRead, 1);
  EXPECT_NE(inputs.ReadEDIDInfo(0, edid), 0);
  EXPECT_EQ(edid[1], 0);
  EXPECT_EQ(inputs.ReadEDIDInfo(0, edid), 0);
  EXPECT_EQ(edid[1], 0xFF);
}

}  // namespace
}  // namespace ORVE_MCUC
