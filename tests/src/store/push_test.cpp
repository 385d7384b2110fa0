// What the daemon's parameter store pushes, as the peers receive it.
#include <gmock/gmock.h>

#include "driverutil.h"
#include "messagedesk.h"
#include "proto/store/data_common.h"
#include "stub/mcuimdthread.h"
#include "stub/stubutil.h"
#include "taskid.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

Data_Global& store() {
  return *Data_Global::getInstance();
}

void expectPush(uint32_t service, uint32_t address, const std::vector<uint8_t>& data) {
  peer::Frame push;
  push.tag = {0xAA, 0x55};
  push.address = address;
  push.length = static_cast<uint16_t>(data.size());
  push.data = data;
  const auto sent = messagedesk::takeSent();
  ASSERT_EQ(sent.size(), 1U);
  EXPECT_EQ(sent[0].task, taskOf(service));
  const auto& bytes = sent[0].bytes;
  EXPECT_EQ(peer::toHex({bytes.begin() + peer::kHeadSize, bytes.end()}), peer::toHex(peer::encode(push)));
  EXPECT_EQ(peer::decodeHead(bytes).taskId, taskOf(service));
}

TEST(Push, EachPeerGetsWhatItMirrors) {
  const TestDaemon daemon;
  messagedesk::connect(taskOf(peer::kLsd));
  messagedesk::connect(taskOf(peer::kVsp));

  const std::vector<uint8_t> roles{0x80, 0x00, 0x80, 0x00, 1, 2, 3, 4};
  for (const uint32_t at : {0x18U, 0x98U, 0x100U}) {
    ASSERT_EQ(DriverUtil::getInstance()->WriteFPGABusBlock(at, roles.data(), at == 0x100 ? 8 : 4), 0);
  }
  store().SendMStoLSD1_4();
  expectPush(peer::kLsd, 0x02000018, {0x80, 0, 0x80, 0});
  store().SendMStoLSD5_8();
  expectPush(peer::kLsd, 0x02000098, {0x80, 0, 0x80, 0});
  store().SendMStoLSD9_16();
  expectPush(peer::kLsd, 0x02000100, roles);
  EXPECT_EQ(store().SendParameterReg[0x104], 1) << "the image is refreshed with what was read";

  store().ReceiveCardSize = CardSize{256, 128};
  store().SendRVCardWHtoLSD();
  expectPush(peer::kLsd, 0x02100006, {0x00, 0x01, 0x80, 0x00});
  store().SendRebootMsgtoLSD(std::vector<uint8_t>{2});
  expectPush(peer::kLsd, 0x01000002, {2});
  store().SendDatetoLSD(0x0200004A, std::vector<uint8_t>(300, 7));
  expectPush(peer::kLsd, 0x0200004A, std::vector<uint8_t>(300, 7));
  store().SendC8toVsp();
  expectPush(peer::kVsp, 0x02810000, {0xC8});
}

TEST(Push, NothingIsSentBeforeTheChannelIsThere) {
  TestDaemon daemon("fpga_autoload = no\n");
  StubUtil::deleteInstance();
  StubUtil::getInstance()->prepare();
  daemon.connect(peer::kVsp);
  store().SendC8toVsp();
  EXPECT_TRUE(messagedesk::takeSent().empty());
  StubUtil::getInstance()->channel().open();
  store().SendC8toVsp();
  EXPECT_EQ(messagedesk::takeSent().size(), 1U);
}

}  // namespace
}  // namespace ORVE_MCUC
