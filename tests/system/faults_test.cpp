// A board that fails: three tries for each call, then an answer without data, never a silent wrong one.
#include "system_test.h"

using peer::Bytes;

namespace {

// Without the FPGA's load notice nothing but the requests touches the board.
class FaultsTest : public SystemTest {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf", "fpga_autoload = no\n");
    start();
  }
};

TEST_F(FaultsTest, TwoFailuresOfABusOrFlashCallAreTriedAway) {
  daemon.board().setFpga(0x00C0FFE0, counting(8));
  daemon.board().setFlash(0x00B98000, counting(8));
  for (const char* kind : {"fpga-read", "fpga-write", "flash-read", "flash-write"}) fail(kind, 2);
  EXPECT_THAT(read(0xF0C0FFE0, 8), Carries(counting(8)));
  EXPECT_THAT(read(0x02300000, 8), Carries(counting(8)));
  EXPECT_THAT(write(0xF0C0FFF0, counting(8, 3)), CarriesNothing());
  EXPECT_EQ(daemon.board().fpga(0x00C0FFF0, 8), counting(8, 3));
  EXPECT_THAT(write(0x02300010, counting(8, 4)), CarriesNothing());
  EXPECT_TRUE(flashBecomes(0x00B98010, counting(8, 4)));
  EXPECT_EQ(daemon.trace().find("Fail<<<"), std::string::npos);
}

TEST_F(FaultsTest, AnFpgaThatCannotBeReadLeavesZerosOrNoData) {
  daemon.board().setFpga(0x00700000, counting(8));
  fail("fpga-read", peer::kAlways);
  EXPECT_THAT(read(0xF0700000, 8), Carries(zeros(8)));
  EXPECT_THAT(read(0x0E000000, 8), CarriesNothing());
  EXPECT_THAT(read(0x12010000, 8), CarriesNothing());
  fail("fpga-read", 0);
  EXPECT_THAT(read(0x0E000000, 8), Carries(counting(8)));
  EXPECT_THAT(daemon.trace(), testing::HasSubstr(">>>>>>>>>>>>>>>>>>>>> FPGA Read Fail<<<<<<<<<<<<<<<<<<<"));
  EXPECT_THAT(daemon.trace(), testing::HasSubstr("Read FPGA Status Up"));
}

TEST_F(FaultsTest, AFlashThatCannotBeReadOrWrittenChangesNothing) {
  daemon.board().setFlash(0x00B98000, counting(8));
  fail("flash-read", peer::kAlways);
  for (const uint32_t address : {0x02300000U, 0x05000000U, 0x0F000000U, 0x0F800000U})
    EXPECT_THAT(read(address, 8), CarriesNothing()) << address;
  EXPECT_EQ(read(0x00000000, 8).ack, 0);
  fail("flash-read", 0);
  fail("flash-write", 3);
  EXPECT_THAT(write(0x02300000, {1, 2, 3}), CarriesNothing());
  EXPECT_THAT(write(0x02300010, {4}), CarriesNothing());
  EXPECT_TRUE(flashBecomes(0x00B98010, {4}));
  EXPECT_THAT(read(0x02300000, 8), Carries(counting(8)));
}

TEST_F(FaultsTest, WithoutTheEnvironmentTheHardwareInfoShowsTheFlash) {
  daemon.board().setFlash(0x1000, counting(32));
  fail("env-open", peer::kAlways);
  EXPECT_THAT(read(0x00000004, 16), Carries(counting(16, 29)));
  EXPECT_EQ(read(0x00000000, 32).data.size(), 32U);
}

TEST_F(FaultsTest, AReplyThatCannotBeSentOrARequestThatCannotBeQueuedIsLostAlone) {
  fail("message-send", 1);
  EXPECT_TRUE(
      (client->send(peer::encode(peer::Frame{.address = 0xF0000000, .length = 4}), 1), nothingCame()));
  fail("message-queue", 1);
  EXPECT_TRUE(
      (client->send(peer::encode(peer::Frame{.address = 0xF0000000, .length = 4}), 1), nothingCame()));
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
}

class DeadFpgaTest : public SystemTest {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf", "fpga_autoload = no\nfpga_status = down\n");
    start();
  }
};

TEST_F(DeadFpgaTest, AnFpgaThatIsDownIsLeftAloneAfterItsFirstFailure) {
  daemon.board().setFpga(0x00C0FFE0, counting(4));
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(counting(4)));
  fail("fpga-read", 3);
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
  EXPECT_EQ(daemon.board().fault(1), 0U);
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
  EXPECT_THAT(write(0xF0C0FFE0, {9}), CarriesNothing());
  EXPECT_EQ(daemon.board().fpga(0x00C0FFE0, 4), counting(4));
}

}  // namespace
