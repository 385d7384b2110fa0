// What the daemon's parameter store pushes, as the peers receive it. The start-up owner runs here as in the
// daemon, once for the program: its threads never end.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <thread>

#include "../../platform/board_fixture.h"
#include "driverutil.h"
#include "mcucutil.h"
#include "peer/peer.h"
#include "platform/apipc.h"
#include "proto/store/data_common.h"
#include "stub/stubutil.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

using namespace std::chrono_literals;

class PushTest : public BoardTest {
 protected:
  void SetUp() override { start("fpga_autoload = no\n"); }
  static Data_Global& store() { return *Data_Global::getInstance(); }
  peer::Peer connect(uint32_t service) { return {file("run/apipc.sock").string(), service, 10s}; }
};

void expectPush(peer::Peer& peer, uint32_t address, const std::vector<uint8_t>& data) {
  const auto message = peer.receive(10s);
  ASSERT_TRUE(message);
  peer::Frame push;
  push.tag = {0xAA, 0x55};
  push.address = address;
  push.length = static_cast<uint16_t>(data.size());
  push.data = data;
  EXPECT_EQ(peer::toHex(message->frame), peer::toHex(peer::encode(push)));
  EXPECT_EQ(message->head.taskId, peer.taskId());
}

TEST_F(PushTest, EachPeerGetsWhatItMirrorsAndNothingIsSentBeforeTheChannelIsThere) {
  store().SendC8toVsp();
  setDelayScale(0);
  ASSERT_TRUE(StubUtil::getInstance()->initialize());
  setDelayScale(100);
  peer::Peer lsd = connect(peer::kLsd);
  peer::Peer vsp = connect(peer::kVsp);

  const std::vector<uint8_t> roles{0x80, 0x00, 0x80, 0x00, 1, 2, 3, 4};
  for (const uint32_t at : {0x18U, 0x98U, 0x100U}) {
    ASSERT_EQ(DriverUtil::getInstance()->WriteFPGABusBlock(at, roles.data(), at == 0x100 ? 8 : 4), 0);
  }
  store().SendMStoLSD1_4();
  expectPush(lsd, 0x02000018, {0x80, 0, 0x80, 0});
  store().SendMStoLSD5_8();
  expectPush(lsd, 0x02000098, {0x80, 0, 0x80, 0});
  store().SendMStoLSD9_16();
  expectPush(lsd, 0x02000100, roles);
  EXPECT_EQ(store().SendParameterReg[0x104], 1) << "the image is refreshed with what was read";

  store().ReceiveCardSize = CardSize{256, 128};
  store().SendRVCardWHtoLSD();
  expectPush(lsd, 0x02100006, {0x00, 0x01, 0x80, 0x00});
  store().SendRebootMsgtoLSD(std::vector<uint8_t>{2});
  expectPush(lsd, 0x01000002, {2});
  store().SendDatetoLSD(0x0200004A, std::vector<uint8_t>(300, 7));
  expectPush(lsd, 0x0200004A, std::vector<uint8_t>(300, 7));
  store().SendC8toVsp();
  expectPush(vsp, 0x02810000, {0xC8});

  // The report thread has its last word before the board goes away.
  const auto programmed = [this] {
    const auto lines = journal();
    return std::find(lines.begin(), lines.end(), "fpga-write 0x00100070 1 00") != lines.end();
  };
  while (!programmed()) std::this_thread::sleep_for(1ms);
}

}  // namespace
}  // namespace ORVE_MCUC

// The daemon's threads go on, so nothing that they use may be destroyed at the end.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  std::fflush(nullptr);
  _exit(result);
}
