// The register spaces: what a read shows and a write leaves behind.
#include "daemontest.h"

namespace {

// Without the FPGA's load notice no restore writes what a test has just written.
class SpaceRoads : public DaemonTest {
 protected:
  SpaceRoads() : DaemonTest("fpga_autoload = no\n") {}
};

using Bytes = peer::Bytes;

struct FlashWindow {
  uint32_t reg, flash;
  uint16_t length;
  bool writable;
};
constexpr FlashWindow kFlashWindows[] = {{0x02300010, 0xB98010, 512, true},
                                         {0x05000003, 0xC30003, 600, true},
                                         {0x05060000, 0xC90000, 32768, true},
                                         {0x0F000010, 0xE00010, 2048, false},
                                         {0x0F800020, 0xD14020, 64, false}};

TEST_F(SpaceRoads, SpacesInTheFlashAreReadAndWrittenThere) {
  for (const FlashWindow& window : kFlashWindows) {
    SCOPED_TRACE(window.reg);
    daemon.board.setFlash(window.flash, counting(window.length));
    EXPECT_THAT(read(window.reg, window.length), Carries(counting(window.length)));
    if (!window.writable) continue;
    EXPECT_THAT(write(window.reg, counting(window.length, 9)), CarriesNothing());
    EXPECT_TRUE(flashHolds(window.flash, counting(window.length, 9)));
    EXPECT_THAT(read(window.reg, window.length), Carries(counting(window.length, 9)));
  }
}

TEST_F(SpaceRoads, QueuedWritesAreCarriedOutInTheOrderOfTheirRequests) {
  for (unsigned i = 1; i <= 50; ++i)
    EXPECT_THAT(daemon.write(0x02300000, {static_cast<uint8_t>(i), 0}), CarriesNothing());
  EXPECT_THAT(daemon.write(0x02300001, {0xAA}), CarriesNothing());
  EXPECT_TRUE(flashHolds(0x00B98000, zeros(2)));
  EXPECT_EQ(daemon.workOff(), 51U);
  EXPECT_TRUE(flashHolds(0x00B98000, {50, 0xAA}));
}

TEST_F(SpaceRoads, ScreenInfoEchoRemembers32BytesAndShowsTheCardSize) {
  EXPECT_THAT(read(0x02100006, 4), Carries(Bytes{128, 0, 128, 0}));
  EXPECT_THAT(write(0x0210000A, counting(40)), CarriesNothing());
  Bytes expected = counting(22);
  expected.resize(40);
  EXPECT_THAT(read(0x0210000A, 40), Carries(expected));
  EXPECT_EQ(read(0x02100000, 1024).data.size(), 392U);
  EXPECT_EQ(read(0x021000FF, 1024).ack, 0);
}

TEST_F(SpaceRoads, TheTriggerTellsVspAndOnlyAsOneByte) {
  daemon.connect(peer::kVsp);
  daemon.board.setFlash(0x00C3FFFF, {7, 8});
  EXPECT_THAT(read(0x0500FFFF, 2), Carries(Bytes{7, 8}));
  EXPECT_THAT(read(0x0500FFFF, 1), Carries(Bytes{0xC8}));
  const auto pushes = daemon.pushes(peer::kVsp);
  ASSERT_EQ(pushes.size(), 1U);
  EXPECT_EQ(peer::encode(pushes[0]),
            peer::fromHex("AA 55 00 00 00 00 00 00 00 00 00 00 00 00 81 02 01 00 C8 A1 56"));
}

struct GammaTable {
  uint32_t reg, flash, fpga, tag;
};
constexpr GammaTable kGammaTables[] = {
    {0x0E000000, 0xD0C000, 0x700000, 0xD09000}, {0x0E100000, 0xD0E000, 0x710000, 0xD0A000},
    {0x0E200000, 0xD10000, 0x720000, 0xD0B000}, {0x0E002000, 0xD03000, 0x702000, 0xD00000},
    {0x0E102000, 0xD05000, 0x712000, 0xD01000}, {0x0E202000, 0xD07000, 0x722000, 0xD02000}};

TEST_F(SpaceRoads, GammaTablesAreStoredTaggedAtTheirEndAndReadFromTheFpga) {
  const Bytes tag{0x39, 0xF6, 0xA5, 0x5A};
  for (const GammaTable& table : kGammaTables) {
    SCOPED_TRACE(table.reg);
    daemon.board.setFpga(table.fpga + 5, counting(9));
    EXPECT_THAT(read(table.reg + 5, 9), Carries(counting(9)));
    EXPECT_THAT(write(table.reg + 0x1800, counting(1024)), CarriesNothing());
    EXPECT_TRUE(flashHolds(table.flash + 0x1800, counting(1024)));
    EXPECT_EQ(flash(table.tag, 4), zeros(4));
    EXPECT_THAT(write(table.reg + 0x1C00, counting(1024, 2)), CarriesNothing());
    EXPECT_TRUE(flashHolds(table.tag, tag));
    EXPECT_EQ(flash(table.flash + 0x1C00, 1024), counting(1024, 2));
  }
}

TEST_F(SpaceRoads, AGammaSegmentThatRunsPastItsTableIsCutAtTheEndAndSetsNoTag) {
  EXPECT_THAT(write(0x0E001F00, counting(512)), CarriesNothing());
  const Bytes all = counting(512);
  EXPECT_TRUE(flashHolds(0xD0DF00, Bytes(all.begin(), all.begin() + 256)));
  EXPECT_THAT(write(0x02300000, {1}), CarriesNothing());
  EXPECT_TRUE(flashHolds(0x00B98000, {1}));
  EXPECT_EQ(flash(0xD0E000, 256), zeros(256));
  EXPECT_EQ(flash(0xD09000, 4), zeros(4));
}

TEST_F(SpaceRoads, GammaValuesAreSingleBytesAndTheRestOfTheSpaceIsZero) {
  daemon.board.setFpga(0xD13000, {0x16});
  daemon.board.setFpga(0xD12000, {0x1C});
  daemon.board.setFpga(0x701FFF, {0xEE});
  EXPECT_THAT(read(0x0E302000, 1), Carries(Bytes{0x16}));
  EXPECT_THAT(read(0x0E300000, 1), Carries(Bytes{0x1C}));
  EXPECT_THAT(read(0x0E302000, 2), Carries(zeros(2)));
  EXPECT_THAT(read(0x0E001FFF, 1), Carries(zeros(1)));
  EXPECT_THAT(write(0x0E302000, {0x22}), CarriesNothing());
  EXPECT_THAT(write(0x0E300000, {0x23}), CarriesNothing());
  EXPECT_TRUE(flashHolds(0xD13000, {0x22}));
  EXPECT_TRUE(flashHolds(0xD12000, {0x23}));
}

TEST_F(SpaceRoads, TestPrintIsTheFpgaBus) {
  EXPECT_THAT(write(0xF1200000, counting(25)), CarriesNothing());
  EXPECT_EQ(fpga(0x01200000, 25), counting(25));
  EXPECT_EQ(fpga(0x00100051, 1), Bytes{1});
  EXPECT_THAT(write(0xF0C0FFE0, counting(2500)), CarriesNothing());
  EXPECT_EQ(fpga(0x00C0FFE0, 2500), counting(2500));
  EXPECT_THAT(read(0xF0C0FFE0, 2500), Carries(counting(2500)));
  EXPECT_EQ(read(0xF0C0FFE0, 4095).data.size(), 4095U);
  EXPECT_THAT(read(0xF0C0FFE0, 4096), IsRefused());
  EXPECT_THAT(write(0xF0C0FFE0, {}), CarriesNothing());
  EXPECT_THAT(write(0xF0C0FFE0, counting(5000)), IsRefused());
  EXPECT_EQ(fpga(0x00C0FFE0, 2500), counting(2500));
}

TEST_F(SpaceRoads, TheEdidIsThatOfTheInputOnceItsBoardHasBeenFound) {
  const Bytes edid = counting(256);
  daemon.prepare("hw/edid-16.bin", {edid.begin(), edid.end()});
  EXPECT_THAT(read(0x08000000, 128), Carries(zeros(128)));
  EXPECT_THAT(read(0x08000000, 1), CarriesNothing());
  EXPECT_THAT(read(0x08000000, 128), Carries(Bytes(edid.begin(), edid.begin() + 128)));
  EXPECT_THAT(read(0x08000000, 256), Carries(edid));
  EXPECT_THAT(read(0x08000000, 64), CarriesNothing());
  EXPECT_THAT(read(0x08000001, 128), CarriesNothing());
  EXPECT_THAT(write(0x08000000, edid), CarriesNothing());
}

TEST_F(SpaceRoads, ThePatternGeneratorShowsItsFirst63Bytes) {
  daemon.board.setFpga(0x00A00000, counting(64));
  EXPECT_THAT(read(0x12010003, 10), Carries(counting(10, 22)));
  EXPECT_EQ(read(0x12010000, 63).data.size(), 63U);
  EXPECT_THAT(read(0x12010000, 64), CarriesNothing());
}

TEST_F(SpaceRoads, TheCardProgramReadsAsZerosAndCannotBeWritten) {
  for (const uint32_t address : {0x18000000U, 0x18001000U, 0x18200000U, 0x18201000U})
    EXPECT_THAT(read(address, 256), Carries(zeros(256)));
  EXPECT_THAT(read(0x18001000, 4096), Carries(zeros(4096)));
  EXPECT_THAT(write(0x18000000, zeros(256)), IsRefused());
  EXPECT_THAT(read(0x18000100, 256), IsRefused());
}

TEST_F(SpaceRoads, UnknownAddressesAndDeviceTypesAreAnsweredWithoutData) {
  for (const uint32_t address :
       {0x00020000U, 0x02250000U, 0x05010000U, 0x13000000U, 0xF2000000U, 0xFFFFFFFFU}) {
    EXPECT_THAT(read(address, 4), CarriesNothing()) << address;
    EXPECT_THAT(write(address, {1, 2}), CarriesNothing()) << address;
  }
  EXPECT_THAT(ask({.deviceType = 5, .address = 0x02300000, .length = 4}), CarriesNothing());
  EXPECT_THAT(ask({.deviceType = 255, .address = 0x02300000, .length = 4}), CarriesNothing());
}

TEST_F(SpaceRoads, LengthsOutsideTheLimitsAndOtherCodesAreRefused) {
  struct Limit {
    uint32_t address;
    uint16_t least, most;
  };
  constexpr Limit kLimits[] = {{0x02100000, 1, 1024},  {0x02300000, 1, 512},  {0x05000000, 1, 32768},
                               {0x0E000000, 1, 1024},  {0x0F000000, 0, 2048}, {0x12010000, 0, 2048},
                               {0x18000000, 256, 4096}};
  for (const Limit& limit : kLimits) {
    SCOPED_TRACE(limit.address);
    EXPECT_EQ(read(limit.address, limit.least).ack, 0);
    EXPECT_EQ(read(limit.address, limit.most).ack, 0);
    if (limit.least > 0) {
      EXPECT_THAT(read(limit.address, static_cast<uint16_t>(limit.least - 1)), IsRefused());
    }
    EXPECT_THAT(read(limit.address, static_cast<uint16_t>(limit.most + 1)), IsRefused());
    EXPECT_THAT(read(limit.address, 65535), IsRefused());
    EXPECT_THAT(ask({.code = 2, .address = limit.address, .length = limit.most}), IsRefused());
  }
  EXPECT_THAT(read(0x00010000, 16), CarriesNothing());
  EXPECT_THAT(read(0x02700000, 16), CarriesNothing());
}

class HardwareInfoRoads : public DaemonTest {
 protected:
  HardwareInfoRoads() : DaemonTest(TestDaemon::Later{}) {
    daemon.prepare("etc/sysconf.env", "ver_rootfs=V2.7.1\ndevice_sn=1a2B3c4D5e6F7081\ndevice_modelid=4c0d\n");
    daemon.start();
  }
  std::string environment() const { return daemon.board.text("etc/sysconf.env"); }
};

TEST_F(HardwareInfoRoads, SerialNumberAndModelComeFromTheEnvironmentWhateverTheFlashHolds) {
  Bytes expected = counting(256);
  daemon.board.setFlash(0x1000, expected);
  const Bytes model{0x0D, 0x4C};
  const Bytes serial{0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F, 0x70, 0x81};
  std::copy(model.begin(), model.end(), expected.begin() + 2);
  std::copy(serial.begin(), serial.end(), expected.begin() + 22);
  EXPECT_THAT(read(0x00000000, 256), Carries(expected));
  EXPECT_THAT(read(0x00000014, 12), Carries(Bytes(expected.begin() + 20, expected.begin() + 32)));
  EXPECT_THAT(read(0x000000FA, 6), Carries(Bytes(expected.begin() + 250, expected.end())));
  EXPECT_THAT(read(0x000000FA, 7), CarriesNothing());
  EXPECT_THAT(read(0x0000FFFF, 65535), CarriesNothing());
}

TEST_F(HardwareInfoRoads, TheStartPublishesVersionAndSerialNumber) {
  EXPECT_THAT(environment(), testing::HasSubstr("ver_parlend=V2.7.1\n"));
  EXPECT_THAT(environment(), testing::HasSubstr("device_sn=1a2B3c4D5e6F7081\n"));
  EXPECT_EQ(flash(0x1016, 8), peer::fromHex("1A2B3C4D5E6F7081"));
}

TEST_F(SpaceRoads, ABlankEnvironmentGetsTheDefaultSerialNumberAndVersion) {
  const std::string environment = daemon.board.text("etc/sysconf.env");
  EXPECT_THAT(environment, testing::HasSubstr("ver_parlend=V1.0.B1\n"));
  EXPECT_THAT(environment, testing::HasSubstr("device_sn=13030d00ffffffff\n"));
  EXPECT_EQ(flash(0x1016, 8), peer::fromHex("13030D00FFFFFFFF"));
}

}  // namespace
