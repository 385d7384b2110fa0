// A board that fails: three tries for each call, then an answer without data, never a silent wrong one.
#include "daemontest.h"
#include "mcuctrace.h"

namespace {

// Without the FPGA's load notice nothing but the requests touches the board.
class FaultsTest : public DaemonTest {
 protected:
  FaultsTest() : DaemonTest("fpga_autoload = no\n") { ORVE_MCUC::setTraceLevel(0); }
};

TEST_F(FaultsTest, TwoFailuresOfABusOrFlashCallAreTriedAway) {
  daemon.board.setFpga(0x00C0FFE0, counting(8));
  daemon.board.setFlash(0x00B98000, counting(8));
  for (const Fault kind : {Fault::FpgaRead, Fault::FpgaWrite, Fault::FlashRead, Fault::FlashWrite})
    daemon.board.failNext(kind, 2);
  EXPECT_THAT(read(0xF0C0FFE0, 8), Carries(counting(8)));
  EXPECT_THAT(read(0x02300000, 8), Carries(counting(8)));
  EXPECT_THAT(write(0xF0C0FFF0, counting(8, 3)), CarriesNothing());
  EXPECT_EQ(fpga(0x00C0FFF0, 8), counting(8, 3));
  EXPECT_THAT(write(0x02300010, counting(8, 4)), CarriesNothing());
  EXPECT_TRUE(flashHolds(0x00B98010, counting(8, 4)));
  EXPECT_THAT(daemon.trace("Fail<<<"), testing::IsEmpty());
}

TEST_F(FaultsTest, TheStatusBehindAFailureIsAnInfoLine) {
  const struct {
    const char* text;
    const char* word;
  } cases[] = {{"no number\n", "Err"}, {"\n", "Err"}, {" \t1\n", "Up"}, {"-1\n", "Err"}, {" \t0\n", "Down"}};
  ORVE_MCUC::setTraceLevel(3);
  for (const auto& [text, word] : cases) {
    daemon.prepare("sys/class/fpga/fpga_conf", text);
    daemon.board.failNext(Fault::FpgaRead, 3);
    daemon.trace();
    EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
    const std::string line = std::string("Info >>>>>>>>>>>>>>>>>>>>>Read FPGA Status ") + word;
    EXPECT_THAT(daemon.trace("FPGA Status "), testing::ElementsAre(line + "<<<<<<<<<<<<<<<<<<<")) << text;
  }
}

TEST_F(FaultsTest, AnFpgaThatCannotBeReadLeavesZerosOrNoData) {
  daemon.board.setFpga(0x00700000, counting(8));
  daemon.board.failNext(Fault::FpgaRead, TestBoard::kEveryCall);
  EXPECT_THAT(read(0xF0700000, 8), Carries(zeros(8)));
  EXPECT_THAT(read(0x0E000000, 8), CarriesNothing());
  EXPECT_THAT(read(0x12010000, 8), CarriesNothing());
  daemon.board.failNext(Fault::FpgaRead, 0);
  EXPECT_THAT(read(0x0E000000, 8), Carries(counting(8)));
  const auto trace = daemon.trace();
  EXPECT_THAT(trace, testing::Contains(
                         testing::HasSubstr(">>>>>>>>>>>>>>>>>>>>> FPGA Read Fail<<<<<<<<<<<<<<<<<<<")));
}

TEST_F(FaultsTest, WhatTheFpgaDoesNotGiveOrTakeOfAnImageIsNamed) {
  daemon.board.failNext(Fault::FpgaRead, TestBoard::kEveryCall);
  daemon.board.failNext(Fault::FpgaWrite, TestBoard::kEveryCall);
  for (const uint32_t image : {0x12010000U, 0x03000000U}) read(image, 8);
  for (const uint32_t image : {0x03000000U, 0x03100000U}) write(image, counting(2));
  daemon.workOff();
  EXPECT_THAT(
      daemon.trace(" failed! ret = "),
      testing::ElementsAre(
          "Error === ReadScreenPatternGenInfo ===Read ScreenPatternGenInfo failed! ret = -1",
          "Error === ReadFromPosNetPort ===Read FPGA Posi Info failed! ret = -1",
          "Error === WriteToPosNetPort ===Write FPGA Position Info failed! ret = -1",
          "Error === WriteToNumberFunCardPort ===Write FPGA NumberFunCardPort Info failed! ret = -1"));
}

TEST_F(FaultsTest, AFlashThatCannotBeReadOrWrittenChangesNothing) {
  daemon.board.setFlash(0x00B98000, counting(8));
  daemon.board.failNext(Fault::FlashRead, TestBoard::kEveryCall);
  for (const uint32_t address : {0x02300000U, 0x05000000U, 0x0F000000U, 0x0F800000U})
    EXPECT_THAT(read(address, 8), CarriesNothing()) << address;
  EXPECT_EQ(read(0x00000000, 8).ack, 0);
  daemon.board.failNext(Fault::FlashRead, 0);
  daemon.board.failNext(Fault::FlashWrite, 3);
  EXPECT_THAT(write(0x02300000, {1, 2, 3}), CarriesNothing());
  EXPECT_THAT(write(0x02300010, {4}), CarriesNothing());
  EXPECT_TRUE(flashHolds(0x00B98010, {4}));
  EXPECT_THAT(read(0x02300000, 8), Carries(counting(8)));
}

TEST_F(FaultsTest, WithoutTheEnvironmentTheHardwareInfoShowsTheFlash) {
  daemon.board.setFlash(0x1000, counting(32));
  daemon.board.failNext(Fault::EnvOpen, TestBoard::kEveryCall);
  EXPECT_THAT(read(0x00000004, 16), Carries(counting(16, 29)));
  EXPECT_EQ(read(0x00000000, 32).data.size(), 32U);
}

TEST_F(FaultsTest, AReplyThatCannotBeSentIsLostAlone) {
  daemon.board.failNext(Fault::MessageSend, 1);
  EXPECT_FALSE(daemon.exchange(peer::encode(peer::Frame{.address = 0xF0000000, .length = 4})));
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
}

class DeadFpgaTest : public DaemonTest {
 protected:
  DeadFpgaTest() : DaemonTest("fpga_autoload = no\nfpga_status = down\n") {}
};

TEST_F(DeadFpgaTest, AnFpgaThatIsDownIsLeftAloneAfterItsFirstFailure) {
  daemon.board.setFpga(0x00C0FFE0, counting(4));
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(counting(4)));
  daemon.board.failNext(Fault::FpgaRead, 3);
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
  EXPECT_EQ(simboard::faultLeft(Fault::FpgaRead).calls, 0U);
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
  EXPECT_THAT(write(0xF0C0FFE0, {9}), CarriesNothing());
  EXPECT_EQ(fpga(0x00C0FFE0, 4), counting(4));
}

}  // namespace
