// What a start restores: after a factory reset one card, otherwise what was saved.
#include "system_test.h"

using peer::Bytes;

namespace {

constexpr uint32_t kFlashFeature = 0xA3B100;

class FirstBootTest : public SystemTest {
 protected:
  void SetUp() override {}
  void prepareReset(const std::string& conf) {
    daemon.prepare("board.conf", conf);
    daemon.prepare("etc/sysconf.env", "firstboot=1\n");
    daemon.prepare("hw/flash.bin", "");
    const Bytes size{0x00, 0x01, 0, 0, 0x80, 0, 0, 0};
    daemon.board().setFlash(0xC20000, size);
    daemon.board().setFlash(0xC20008, size);
  }
};

TEST_F(FirstBootTest, MapsOneCardAndTellsLsd) {
  prepareReset("fpga_autoload = no\n");
  start();
  peer::Peer lsd = daemon.connect(peer::kLsd);
  daemon.prepare("etc/init.d/flag_fpgaload", "");
  std::vector<uint32_t> pushed;
  while (pushed.size() < 4) {
    const auto push = lsd.nextPush(kPatience);
    ASSERT_TRUE(push);
    pushed.push_back(push->address);
  }
  EXPECT_EQ(pushed, (std::vector<uint32_t>{0x02000018, 0x02000098, 0x02000100, 0x14000000}));
  EXPECT_EQ(contents(daemon.board().directory() / "etc/sysconf.env").find("firstboot=1"), std::string::npos);
  EXPECT_EQ(daemon.board().fpga(0x24, 4), (Bytes{0x00, 0x01, 0x80, 0x00})) << "one card of 256 x 128";
  EXPECT_EQ(daemon.board().fpga(0x500000, 2), (Bytes{1, 0}));
  EXPECT_EQ(daemon.board().flash(0xC20040, 15), (Bytes{1, 0x55, 0, 0, 0, 0, 0, 1, 0x80, 0, 1, 1, 0, 1, 0}));
}

class LateRestoreTest : public SystemTest {
 protected:
  void SetUp() override {}
};
TEST_F(LateRestoreTest, WhatWasSavedIsInMemoryBeforeTheFpgaIsThere) {
  daemon.prepare("board.conf", "fpga_autoload = no\n");
  daemon.prepare("hw/flash.bin", "");
  daemon.board().setFlash(kFlashFeature + 0x51, counting(8));
  daemon.board().setFlash(0xA3C000, counting(16));
  daemon.board().setFlash(0xB99000, {0xA8});
  start();
  EXPECT_EQ(read(0x02810000, 1).data, Bytes{0xA8});
  // The size step of a submission saves everything that memory holds.
  ASSERT_EQ(write(0x02810016, {2, 2, 2, 0}).ack, 0);
  EXPECT_TRUE(flashBecomes(0xD17000, {1}));
  EXPECT_TRUE(flashBecomes(0xB88000, peer::fromHex("39F6A55A")));
  EXPECT_TRUE(flashBecomes(kFlashFeature + 0x51, counting(8)));
  EXPECT_TRUE(flashBecomes(0xA3C000, counting(16)));
  EXPECT_EQ(daemon.board().fpga(0x600000, 16), zeros(16));
}

// Offsets of the screen as the restore hands them to the FPGA.
struct OffsetCase {
  const char* name;
  Bytes image;  // 0x1F0..0x1F8 of the feature parameters
  Bytes x, directionX, y, directionY;
};
void PrintTo(const OffsetCase& offsets, std::ostream* out) {
  *out << offsets.name;
}
class OffsetTest : public SystemTest, public testing::WithParamInterface<OffsetCase> {
 protected:
  void SetUp() override {}
};
TEST_P(OffsetTest, IsRestored) {
  daemon.prepare("hw/flash.bin", "");
  daemon.board().setFlash(kFlashFeature + 0x23, {0x22});
  daemon.board().setFlash(kFlashFeature + 0x28, {0x11, 0x22, 0x33, 0x44});
  daemon.board().setFlash(kFlashFeature + 0x91, {0x55, 0x66});
  daemon.board().setFlash(kFlashFeature + 0xAC, {0x77, 0x88});
  daemon.board().setFlash(kFlashFeature + 0x1F0, GetParam().image);
  start();
  ASSERT_TRUE(eventually([&] { return journaled("fpga-write 0x000001de") == 1; })) << "not restored";
  EXPECT_EQ(daemon.board().fpga(0x28, 2), GetParam().x);
  EXPECT_EQ(daemon.board().fpga(0x2A, 2), GetParam().y);
  EXPECT_EQ(daemon.board().fpga(0x91, 2), GetParam().directionX);
  EXPECT_EQ(daemon.board().fpga(0xAC, 2), GetParam().directionY);
  EXPECT_EQ(daemon.board().fpga(0x23, 1), Bytes{0x20});
}
INSTANTIATE_TEST_SUITE_P(
    Modes, OffsetTest,
    testing::Values(
        OffsetCase{
            "none", {1, 0, 0, 0, 1, 0, 0, 0, 0}, {0x11, 0x22}, {0x55, 0x66}, {0x33, 0x44}, {0x77, 0x88}},
        OffsetCase{"signed", {0xFB, 0xFF, 0xFF, 0xFF, 7, 0, 0, 0, 2}, {5, 0}, {0, 0}, {7, 0}, {0xFF, 0xFF}},
        OffsetCase{"smallest", {0, 0, 0, 0x80, 0, 0, 0, 0, 2}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
        OffsetCase{"registers", {1, 0, 0, 0, 1, 0, 0, 0, 1}, {0x11, 0x22}, {0, 0}, {0x33, 0x44}, {0, 0}}));

}  // namespace
