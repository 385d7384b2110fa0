// What a start restores: after a factory reset one card, otherwise what was saved.
#include "daemontest.h"

namespace {

using Bytes = peer::Bytes;

constexpr uint32_t kFlashFeature = 0xA3B100;

class BootTest : public DaemonTest {
 protected:
  BootTest() : DaemonTest(TestDaemon::Later{}) { daemon.prepare("hw/flash.bin", ""); }
  void setFlash(uint32_t address, const Bytes& bytes) { daemon.board.setFlash(address, bytes); }
};

TEST_F(BootTest, TheFirstBootAfterAResetMapsOneCardAndTellsLsd) {
  daemon.prepare("etc/sysconf.env", "firstboot=1\n");
  const Bytes size{0x00, 0x01, 0, 0, 0x80, 0, 0, 0};
  setFlash(0xC20000, size);
  setFlash(0xC20008, size);
  daemon.start("fpga_autoload = no\n");
  daemon.connect();
  daemon.prepare("etc/init.d/flag_fpgaload", "");
  daemon.bringUp();
  std::vector<uint32_t> pushed;
  for (const peer::Frame& push : daemon.pushes()) pushed.push_back(push.address);
  EXPECT_EQ(pushed, (std::vector<uint32_t>{0x02000018, 0x02000098, 0x02000100, 0x14000000}));
  EXPECT_EQ(daemon.board.text("etc/sysconf.env").find("firstboot=1"), std::string::npos);
  EXPECT_EQ(fpga(0x24, 4), (Bytes{0x00, 0x01, 0x80, 0x00})) << "one card of 256 x 128";
  EXPECT_EQ(fpga(0x500000, 2), (Bytes{1, 0}));
  EXPECT_EQ(flash(0xC20040, 15), (Bytes{1, 0x55, 0, 0, 0, 0, 0, 1, 0x80, 0, 1, 1, 0, 1, 0}));
}

TEST_F(BootTest, WhatWasSavedIsInMemoryBeforeTheFpgaIsThere) {
  setFlash(kFlashFeature + 0x51, counting(8));
  setFlash(0xA3C000, counting(16));
  setFlash(0xB99000, {0xA8});
  daemon.start("fpga_autoload = no\n");
  EXPECT_EQ(read(0x02810000, 1).data, Bytes{0xA8});
  // The size step of a submission saves everything that memory holds.
  ASSERT_EQ(write(0x02810016, {2, 2, 2, 0}).ack, 0);
  EXPECT_TRUE(flashHolds(0xD17000, {1}));
  EXPECT_TRUE(flashHolds(0xB88000, peer::fromHex("39F6A55A")));
  EXPECT_TRUE(flashHolds(kFlashFeature + 0x51, counting(8)));
  EXPECT_TRUE(flashHolds(0xA3C000, counting(16)));
  EXPECT_EQ(fpga(0x600000, 16), zeros(16));
}

// Offsets of the screen as the restore hands them to the FPGA.
struct BootOffset {
  const char* name;
  Bytes image;  // 0x1F0..0x1F8 of the feature parameters
  Bytes x, directionX, y, directionY;
};
void PrintTo(const BootOffset& offsets, std::ostream* out) {
  *out << offsets.name;
}
class BootOffsets : public BootTest, public testing::WithParamInterface<BootOffset> {};
TEST_P(BootOffsets, IsRestored) {
  setFlash(kFlashFeature + 0x23, {0x22});
  setFlash(kFlashFeature + 0x28, {0x11, 0x22, 0x33, 0x44});
  setFlash(kFlashFeature + 0x91, {0x55, 0x66});
  setFlash(kFlashFeature + 0xAC, {0x77, 0x88});
  setFlash(kFlashFeature + 0x1F0, GetParam().image);
  daemon.start();
  EXPECT_EQ(fpga(0x28, 2), GetParam().x);
  EXPECT_EQ(fpga(0x2A, 2), GetParam().y);
  EXPECT_EQ(fpga(0x91, 2), GetParam().directionX);
  EXPECT_EQ(fpga(0xAC, 2), GetParam().directionY);
  EXPECT_EQ(fpga(0x23, 1), Bytes{0x20});
}
INSTANTIATE_TEST_SUITE_P(
    Boot, BootOffsets,
    testing::Values(
        BootOffset{
            "none", {1, 0, 0, 0, 1, 0, 0, 0, 0}, {0x11, 0x22}, {0x55, 0x66}, {0x33, 0x44}, {0x77, 0x88}},
        BootOffset{"signed", {0xFB, 0xFF, 0xFF, 0xFF, 7, 0, 0, 0, 2}, {5, 0}, {0, 0}, {7, 0}, {0xFF, 0xFF}},
        BootOffset{"smallest", {0, 0, 0, 0x80, 0, 0, 0, 0, 2}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
        BootOffset{"registers", {1, 0, 0, 0, 1, 0, 0, 0, 1}, {0x11, 0x22}, {0, 0}, {0x33, 0x44}, {0, 0}}));

}  // namespace
