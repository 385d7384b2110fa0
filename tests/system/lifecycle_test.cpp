// Starts, restarts, trace levels, and the notice that the daemon is there.
#include "system_test.h"

using peer::Bytes;
using testing::IsEmpty;
using testing::Not;

namespace {

using LifecycleTest = SystemTest;

TEST_F(LifecycleTest, AKilledDaemonFindsTheBoardStillOn) {
  daemon.board().setFpga(0x00C0FFE0, counting(8));
  EXPECT_THAT(write(0x02300000, counting(64)), CarriesNothing());
  EXPECT_TRUE(flashBecomes(0x00B98000, counting(64)));
  daemon.kill();
  EXPECT_THROW(read(0xF0C0FFE0, 8), peer::Error);
  start();
  EXPECT_THAT(read(0xF0C0FFE0, 8), Carries(counting(8)));
  EXPECT_THAT(read(0x02300000, 64), Carries(counting(64)));
}

TEST_F(LifecycleTest, APowerCutEndsTheDaemonWithItsStatusAndTheNextStartSwitchesTheBoardOn) {
  daemon.board().setFpga(0x00C0FFE0, counting(8));
  daemon.board().setPowerCut({.atWrite = 1});
  client->send(peer::encode(peer::Frame{
                   .code = peer::kWrite, .address = 0x02300000, .length = 64, .data = counting(64)}),
               kRawNumber);
  EXPECT_EQ(daemon.awaitEnd(), 75);
  start();
  EXPECT_THAT(read(0xF0C0FFE0, 8), Carries(zeros(8)));
  EXPECT_THAT(read(0x02300000, 64), Carries(zeros(64))) << "what was under way when the power went";
}

TEST_F(LifecycleTest, ASecondDaemonOnTheSameBoardRefusesToStart) {
  std::string errors;
  EXPECT_GT(daemon.runSecond(errors), 0);
  EXPECT_THAT(errors, Not(IsEmpty()));
  EXPECT_THAT(read(0xF0C0FFE0, 1), Carries(zeros(1)));
}

class LateFpgaTest : public SystemTest {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf", "fpga_autoload = no\ncard_bit = 0x2A\n");
    start();
  }
};

TEST_F(LateFpgaTest, LsdIsToldOnceTheFpgaIsLoadedAndRequestsAreServedBefore) {
  peer::Peer lsd = daemon.connect(peer::kLsd);
  EXPECT_EQ(lsd.taskId(), 0x2A0A3900U);
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
  daemon.prepare("etc/init.d/flag_fpgaload", "");
  const auto push = lsd.receive(kPatience);
  ASSERT_TRUE(push);
  EXPECT_EQ(push->frame, peer::fromHex("AA 55 00 00 00 00 00 00 00 00 00 00 00 00 00 14 01 00 02 6C 55"));
  EXPECT_EQ(peer::toHex(peer::encode(push->head)), "00390a2a" + std::string(32, '0') + "00001c0015000000");
  // From now on ticks come by themselves.
  constexpr uint32_t kFiberModule = 0x1D7;
  daemon.board().setFpga(kFiberModule, {0x66});
  for (auto told = lsd.nextPush(kPatience);; told = lsd.nextPush(kPatience)) {
    ASSERT_TRUE(told) << "there are no ticks";
    if (told->address == 0x02000000 + kFiberModule && told->data == Bytes{0x66}) break;
  }
}

struct Level {
  const char* argument;
  bool error, debug, info;
};
void PrintTo(const Level& level, std::ostream* out) {
  *out << '"' << level.argument << '"';
}

class LevelTest : public SystemTest, public testing::WithParamInterface<Level> {
 protected:
  void SetUp() override { start(GetParam().argument); }
};

TEST_P(LevelTest, TheArgumentDecidesWhatIsTraced) {
  // The flag file is there from the start and its notice is an Error line, the last of the start-up to come.
  const auto has = [&](const char* text) { return daemon.trace().find(text) != std::string::npos; };
  if (GetParam().error) {
    EXPECT_TRUE(eventually([&] { return has("receive file /etc/init.d/flag_fpgaload."); }));
  }
  EXPECT_THAT(read(0x02300000, 4), Carries(zeros(4)));
  EXPECT_THAT(read(0x02250000, 4), CarriesNothing());
  EXPECT_EQ(has(" Error:"), GetParam().error);
  EXPECT_EQ(has(" Debug:"), GetParam().debug);
  EXPECT_EQ(has(" Info:"), GetParam().info);
  EXPECT_EQ(has("Invalid register address!"), GetParam().error);
  EXPECT_EQ(has("begin."), GetParam().debug);
  EXPECT_EQ(has("Begin Read BackupInfo"), GetParam().info);
}

INSTANTIATE_TEST_SUITE_P(Arguments, LevelTest,
                         testing::Values(Level{"", true, false, false}, Level{"-debug", true, true, true},
                                         Level{"-info", true, true, false},
                                         Level{"-disable", false, false, false},
                                         Level{"-v", false, false, false},
                                         Level{"-DEBUG", false, false, false}));

class TraceTest : public SystemTest {
 protected:
  void SetUp() override { start("-debug"); }
};

TEST_F(TraceTest, ARequestCanBeFollowedThroughTheTrace) {
  const auto has = [&](const char* text) { return daemon.trace().find(text) != std::string::npos; };
  EXPECT_TRUE(eventually([&] { return has("Finish main init"); }));
  EXPECT_THAT(read(0x02300010, 4), Carries(zeros(4)));
  EXPECT_TRUE(nothingCame());  // by now the request's last line is written
  const std::string trace = daemon.trace();
  std::size_t from = 0;
  for (const char* step :
       {"Parlend Start", "Version:1.1.0.0", "Begin main init", "Apipc ipc_event_deal begin...",
        "Recv Register Address : 0x02300010 length : 4", "Begin Read BackupInfo",
        "ReadBytesFromFlash: start address = 0x00b98010", "Finish SendCard Task", "Begin reply Message",
        "ReplyMsg: the ack = 0", "Finish reply Message", "onDataRecvFromIMDNew UnLock",
        "Finish Deal DataBlock", "Apipc, Get a new Packet: ihead_t uiid = 0x010a7", "Begin Deal DataBlock",
        "Finish Decode the DataBlock.", "onDataRecvFromIMDNew Lock", "Begin SendCard Task"}) {
    from = trace.find(step, from);
    ASSERT_NE(from, std::string::npos) << step;
  }
}

}  // namespace
