// The link and redundancy monitor of a running daemon. What each tick pushes is tested where ticks can be
// called one by one; here they come by themselves.
#include <poll.h>

#include <thread>

#include "system_test.h"

using peer::Bytes;
using peer::Medium;

namespace {

class RunningMonitorTest : public SystemTest {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf",
                   "fpga_autoload = no\ncopper_ports = 0-3\nfiber2_ports = 9\nfiber_module = 0xA1\n"
                   "card_width = 256\n");
    start();
    lsd.emplace(daemon.connect(peer::kLsd));
  }
  void loadFpga() const { daemon.prepare("etc/init.d/flag_fpgaload", ""); }

  // The next push of what the hardware alone writes: the restored parameters are pushed, too.
  testing::AssertionResult next(uint32_t address, const Bytes& data) {
    while (const auto push = lsd->nextPush(kPatience)) {
      if (isParameter(push->address)) continue;
      if (push->address == address && push->data == data) return testing::AssertionSuccess();
      return testing::AssertionFailure() << std::hex << push->address << ' ' << peer::toHex(push->data);
    }
    return testing::AssertionFailure() << "nothing came";
  }
  static bool isParameter(uint32_t address) {
    return address == 0x02000018 || address == 0x02000098 || address == 0x02000100 || address == 0x020001DA;
  }
  void expectFirstTick() {
    EXPECT_TRUE(next(0x0200001F, {0x0F}));
    EXPECT_TRUE(next(0x0200009F, {0}));
    EXPECT_TRUE(next(0x02000126, {0, 0}));
    EXPECT_TRUE(next(0x020001D7, {0xA1}));
    EXPECT_TRUE(next(0x020001F4, {0}));
    EXPECT_TRUE(next(0x020001F5, {2}));
    EXPECT_TRUE(next(0x02100006, {0, 1, 128, 0}));
  }
  std::size_t failedReads() const {
    constexpr std::string_view kLine = "FPGA Read Fail<<<";
    const std::string trace = daemon.trace();
    std::size_t count = 0;
    for (auto at = trace.find(kLine); at != std::string::npos; at = trace.find(kLine, at + 1)) ++count;
    return count;
  }
  // At least two ticks, whose reads fail all.
  void awaitFailingTicks() const {
    const std::size_t before = failedReads();
    EXPECT_TRUE(eventually([&] { return failedReads() > before + 40; }));
  }

  std::optional<peer::Peer> lsd;
};

TEST_F(RunningMonitorTest, LsdIsToldEveryStatusOnceTheFpgaIsLoadedAndThenEveryChange) {
  loadFpga();
  EXPECT_TRUE(next(0x14000000, {2}));
  expectFirstTick();
  daemon.board().setLink(7, Medium::Copper, true);
  EXPECT_TRUE(next(0x0200001F, {0x0F}));
  EXPECT_TRUE(next(0x0200009F, {8}));
  EXPECT_TRUE(next(0x02000126, {0, 0}));
  EXPECT_TRUE(next(0x02100006, {0, 1, 128, 0}));
  EXPECT_THAT(read(0x02100006, 4), Carries(Bytes{0, 1, 128, 0}));
}

TEST_F(RunningMonitorTest, AnLsdThatComesBackIsToldEveryStatusAgain) {
  loadFpga();
  EXPECT_TRUE(next(0x14000000, {2}));
  expectFirstTick();
  // Whoever leaves and returns is told everything once more.
  ASSERT_TRUE(eventually([&] {
    lsd.reset();
    std::this_thread::sleep_for(peer::milliseconds(400));
    lsd.emplace(daemon.connect(peer::kLsd));
    pollfd told{.fd = lsd->descriptor(), .events = POLLIN, .revents = 0};
    return poll(&told, 1, 1000) == 1;
  }));
  expectFirstTick();
}

TEST_F(RunningMonitorTest, AnFpgaThatCannotBeReadOrWrittenForLongIsNoEndOfTheTicks) {
  fail("fpga-read", peer::kAlways);
  fail("fpga-write", peer::kAlways);
  loadFpga();
  EXPECT_TRUE(next(0x14000000, {2}));
  awaitFailingTicks();
  daemon.board().setFpga(0x1D7, {0x55});
  awaitFailingTicks();
  EXPECT_THAT(read(0x02100006, 4), Carries(Bytes{128, 0, 128, 0}));
  daemon.board().setFpga(0x1D7, {0x66});
  fail("fpga-read", 0);
  for (auto push = lsd->nextPush(kPatience);; push = lsd->nextPush(kPatience)) {
    ASSERT_TRUE(push) << "the ticks have stopped";
    if (push->address == 0x020001D7) {
      EXPECT_EQ(push->data, Bytes{0x66}) << "what could not be read was pushed";
      break;
    }
  }
}

}  // namespace
