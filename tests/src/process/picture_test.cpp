// Picture settings, gamma tables and test patterns, from a peer's write to flash and FPGA.
#include "calc/gammacurve.h"
#include "calc/screenpattern.h"
#include "daemontest.h"
#include "mcuctrace.h"
#include "process/proc_poll.h"
#include "process/screenpatternload.h"

namespace {

// Without the FPGA's load notice no restore writes what a test has just written.
class PictureTest : public DaemonTest {
 protected:
  PictureTest() : DaemonTest("fpga_autoload = no\ncard_brightness = 0x80\n") {}

  static Bytes builtIn() {
    const auto table = ORVE_MCUC::gammacurve::defaultTable();
    return {table.begin(), table.end()};
  }
  Bytes gamma(unsigned colour) const { return fpga(0x700000 + 0x10000 * colour, 8192); }
};

TEST_F(PictureTest, Hdr10LoadsOneCurveForAllColoursAndKeepsItsRecord) {
  daemon.tick();  // from now on the cards are linked and their brightness is known
  EXPECT_THAT(write(0x02200117, {0x58}), CarriesNothing());
  EXPECT_THAT(write(0x02200118, {0x20, 0x03}), CarriesNothing());
  EXPECT_THAT(write(0x0220011A, {40}), CarriesNothing());
  EXPECT_THAT(write(0x0220012E, {7}), CarriesNothing());
  EXPECT_THAT(read(0x02201117, 4), Carries(Bytes{0x58, 0x20, 0x03, 40}));
  EXPECT_THAT(read(0x0220312E, 1), Carries(Bytes{7}));
  EXPECT_EQ(journaled("colour hdr10 800 40 50 10 7 140"), 1U);
  EXPECT_EQ(flash(0xC21000, 10), (Bytes{0x58, 0, 50, 0, 0x20, 0x03, 40, 0, 7, 140}));
  EXPECT_EQ(gamma(0), gamma(1));
  EXPECT_EQ(gamma(0), gamma(2));
  EXPECT_EQ(fpga(0x500109, 1), Bytes{0x5A});
  EXPECT_EQ(fpga(0x1EA, 1), Bytes{0x58});
}

TEST_F(PictureTest, HlgLoadsTheCurveOfItsClass) {
  EXPECT_THAT(write(0x02200117, {0x78}), CarriesNothing());
  const Bytes ofNoClass = gamma(0);
  EXPECT_THAT(write(0x02200129, {3}), CarriesNothing());
  EXPECT_THAT(read(0x02200129, 1), Carries(Bytes{3}));
  EXPECT_EQ(journaled("colour hlg 3"), 1U);
  EXPECT_NE(gamma(0), ofNoClass);
  EXPECT_EQ(gamma(0), gamma(2));
}

TEST_F(PictureTest, WithoutAnHdrTypeTheStoredTablesComeBack) {
  EXPECT_THAT(write(0x02200117, {0}), CarriesNothing());
  for (const unsigned colour : {0U, 1U, 2U}) EXPECT_EQ(gamma(colour), builtIn()) << colour;
  EXPECT_EQ(fpga(0x1EA, 1), Bytes{0xFF});
  const Bytes settings = read(0x02200117, 4).data;
  EXPECT_THAT(write(0x02200118, {1, 2}), CarriesNothing());
  EXPECT_THAT(read(0x02200117, 4), Carries(settings)) << "without HDR10 the peak light stays";
}

TEST_F(PictureTest, ShortAndForeignWritesChangeNothing) {
  EXPECT_THAT(write(0x02200118, {1}), IsRefused());
  ORVE_MCUC::setTraceLevel(0);
  for (const Bytes& data : {Bytes{1}, Bytes{1, 2}})
    EXPECT_EQ(daemon.write(0x022001FF, data).ack, 0) << "reaches the image's end: only the log tells";
  EXPECT_EQ(daemon.trace("Invalid addr+len").size(), 2U);
  EXPECT_EQ(daemon.workOff(), 0U);
  EXPECT_THAT(read(0x02200333, 3), Carries(zeros(3)));
}

TEST_F(PictureTest, QualityWarmUpAndCommunicationMode) {
  EXPECT_THAT(write(0x0220013A, {0x10, 0x20, 0x2C, 0x01}), CarriesNothing());
  EXPECT_EQ(journaled("colour csc 0 16 32 300 0"), 1U);
  EXPECT_EQ(journaled("colour csc 4 16 32 300 0"), 1U);
  EXPECT_THAT(read(0x0220013A, 6), Carries(Bytes{0x20, 0, 0x10, 0, 0x2C, 0x01}));
  EXPECT_NE(fpga(0xD00000, 32), zeros(32));
  EXPECT_NE(fpga(0xD00040, 32), fpga(0xD00000, 32));
  EXPECT_THAT(write(0x0220012C, {1, 30}), CarriesNothing());
  EXPECT_EQ(ORVE_MCUC::Proc_Poll::getInstance()->ChangeParaForKeepWarmUpMode, 1);
  EXPECT_EQ(ORVE_MCUC::Proc_Poll::getInstance()->ParaForKeepWarmUpModeTimeData, 30);
  EXPECT_EQ(flash(0xD14000, 6), (Bytes{1, 30, 0x39, 0xF6, 0xA5, 0x5A}));
  EXPECT_THAT(write(0x022000C0, {5}), CarriesNothing());
  EXPECT_EQ(journaled("env-set devcom_mode 2"), 1U);
}

TEST_F(PictureTest, TheLastTableOfABankLoadsWhatIsValid) {
  daemon.board.setFlash(0xD01000, {0x39, 0xF6, 0xA5, 0x5A});
  daemon.board.setFlash(0xD05000, counting(8192));
  EXPECT_THAT(write(0x0E203C00, counting(1024)), CarriesNothing());
  EXPECT_EQ(flash(0xD02000, 4), (Bytes{0x39, 0xF6, 0xA5, 0x5A}));
  EXPECT_EQ(gamma(0), builtIn());
  EXPECT_EQ(gamma(1), counting(8192));
  EXPECT_EQ(gamma(2), flash(0xD07000, 8192));
}

TEST_F(PictureTest, PatternsAreLoadedWithTheirPhasesAndAStrobe) {
  daemon.board.setFpga(0x2C, {0x80, 0x07});
  daemon.board.setFpga(0x26, {0x38, 0x04});
  Bytes blocks(0x39);
  blocks[1] = 3;
  blocks[0x0E] = 100;
  blocks[0x10] = 0xF6;
  blocks[0x11] = 0xFF;
  blocks[0x20] = 2;
  blocks[0x31] = 64;
  blocks[0x33] = 32;
  EXPECT_THAT(write(0x12010000, blocks), CarriesNothing());
  EXPECT_EQ(ORVE_MCUC::ScreenPatternGenState, 3);
  EXPECT_EQ(fpga(0xA00002, 4), (Bytes{0x80, 0x07, 0x38, 0x04}));
  EXPECT_EQ(fpga(0xA0002D, 4), (Bytes{2, 0, 0, 0}));
  EXPECT_EQ(fpga(0xA00035, 4), (Bytes{28, 0, 10, 0}));
  EXPECT_EQ(journaled("fpga-write 0x00a0001b 1 a8"), 1U);
  EXPECT_EQ(journaled("fpga-write 0x00a0001b 1 00"), 1U);
  const std::size_t loads = journaled("fpga-write 0x00a00000");
  EXPECT_THAT(write(0x120101F0, Bytes(32)), CarriesNothing());
  EXPECT_EQ(journaled("fpga-write 0x00a00000"), loads) << "runs past the registers: dropped";
  daemon.restart();
  EXPECT_EQ(ORVE_MCUC::ScreenPatternGenState, 0) << "of another program";
}

}  // namespace
