// The message channel: what becomes of a request, a work item or a tick that runs out of memory, what a peer
// is not told, and who is told everything.
#include <gmock/gmock.h>

#include <algorithm>

#include "../allocations.h"
#include "calc/screenrecord.h"
#include "mcuctrace.h"
#include "messagedesk.h"
#include "stub/mcuimdthread.h"
#include "stub/mcuprocessthread.h"
#include "stub/stubutil.h"
#include "testdaemon.h"

namespace {

using namespace ORVE_MCUC;
using testing::AnyOf;
using testing::Contains;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using Bytes = peer::Bytes;

constexpr uint32_t kBackupInfo = 0x02300000;
constexpr uint32_t kRecord = 0x02810000;
constexpr uint32_t kSoftwareTable = 0x05000000;
constexpr uint8_t kRefusal = 4;

peer::Frame writing(uint32_t address, const Bytes& data) {
  return {
      .code = peer::kWrite, .address = address, .length = static_cast<uint16_t>(data.size()), .data = data};
}

Bytes wall() {
  std::array<uint8_t, shortcut::kUsedSize> record{};
  shortcut::putSmartScreen(record, {2, 3, 4, 1, {}});
  return {record.begin() + shortcut::kModeAt, record.end()};
}

// One message as the receive thread would take it, and what came back.
class Exchange {
 public:
  explicit Exchange(const peer::Frame& frame) {
    const Bytes bytes = peer::encode(frame);
    Bytes message =
        peer::encode(peer::Head{.taskId = kTool, .frameLength = static_cast<uint32_t>(bytes.size())});
    message.insert(message.end(), bytes.begin(), bytes.end());
    messagedesk::connect(kTool);
    messagedesk::takeSent();
    messagedesk::arrive(message);
  }
  static void take() { StubUtil::getInstance()->channel().takeMessage(); }
  static std::vector<peer::Frame> replies() {
    std::vector<peer::Frame> found;
    for (const auto& sent : messagedesk::takeSent())
      if (sent.task == kTool) found.push_back(peer::decode(std::span(sent.bytes).subspan(peer::kHeadSize)));
    return found;
  }

 private:
  static constexpr uint32_t kTool = 0x010A7000;
};

TEST(MemoryTest, ARequestThatRunsOutOfItIsRefusedWithoutDataAndNothingIsHalfDone) {
  TestDaemon daemon;
  for (const auto& frame :
       {writing(kBackupInfo, Bytes(40, 7)), writing(kRecord + shortcut::kModeAt, wall()),
        writing(kSoftwareTable, Bytes(512, 9)), peer::Frame{.address = kBackupInfo, .length = 512},
        peer::Frame{.deviceType = 1, .address = 0x02000017, .length = 4}}) {
    bool more = true;
    for (std::size_t n = 1; more; ++n) {
      setTraceLevel(0);
      const Exchange exchange(frame);
      more = failAllocation(n, [] { Exchange::take(); });
      const auto replies = Exchange::replies();
      const std::size_t queued = daemon.workOff();
      if (replies.empty()) {
        EXPECT_THAT(daemon.trace("reply message Failed"), SizeIs(1)) << frame.address << " " << n;
        continue;
      }
      ASSERT_THAT(replies, SizeIs(1)) << frame.address << " " << n;
      EXPECT_THAT(replies[0].ack, AnyOf(0, kRefusal));
      if (replies[0].ack == kRefusal) {
        EXPECT_THAT(replies[0].data, IsEmpty());
        EXPECT_EQ(queued, 0U);
        EXPECT_THAT(daemon.trace("out of memory"), SizeIs(1));
      } else if (frame.code == peer::kWrite && queued == 0) {
        EXPECT_THAT(daemon.trace("new a pDataBlock, but it's NULL"), SizeIs(1)) << frame.address << " " << n;
      }
      if (!more) {
        EXPECT_EQ(replies[0].ack, 0) << "with memory it is carried out";
        EXPECT_GT(n, 2U) << "nothing was tried";
      }
    }
  }
}

TEST(MemoryTest, AWorkItemThatRunsOutOfItIsGivenUpAndTheNextIsCarriedOut) {
  TestDaemon daemon;
  for (const auto& frame : {writing(kBackupInfo, Bytes(40, 7)), writing(kRecord + shortcut::kModeAt, wall()),
                            writing(kSoftwareTable, Bytes(512, 9))}) {
    bool more = true;
    for (std::size_t n = 1; more; ++n) {
      ASSERT_EQ(daemon.ask(frame).ack, 0);
      ASSERT_EQ(daemon.write(kBackupInfo + 100, {static_cast<uint8_t>(n)}).ack, 0);
      std::size_t handled = 0;
      more = failAllocation(n, [&] { handled = daemon.workOff(); });
      EXPECT_EQ(handled, 2U);
    }
    EXPECT_EQ(daemon.read(kBackupInfo, 40).ack, 0);
  }
}

// The whole of it: a wall that was submitted is calculated and every status told in the end, whatever the
// tick lacked.
TEST(MemoryTest, ATickThatRunsOutOfItIsMadeUpForByTheNext) {
  const auto prepare = [](TestDaemon& daemon) {
    daemon.write(kRecord + shortcut::kModeAt, wall());
    daemon.workOff();
    daemon.tick(2);
    daemon.write(kRecord + shortcut::kModeAt, wall());
    daemon.workOff();
    daemon.tick();
    daemon.board.setFpga(0x600000, Bytes(64, 0));
    daemon.board.setFpga(0x1F, {0x03});
    daemon.connect();
    daemon.pushes();
  };
  TestDaemon daemon("copper_ports = 0-3\n");
  prepare(daemon);
  daemon.tick(5);
  const Bytes table = daemon.board.fpga(0x600000, 64);
  ASSERT_NE(table, Bytes(64, 0));
  std::vector<std::string> told;
  for (const auto& push : daemon.pushes()) told.push_back(peer::toHex(peer::encode(push)));
  ASSERT_THAT(told, Not(IsEmpty()));
  bool more = true;
  for (std::size_t n = 1; more; ++n) {
    daemon.disconnect();
    daemon.board.setFpga(0x1F, {0x0F});
    daemon.tick(2);
    prepare(daemon);
    more = failAllocation(n, [] { StubUtil::getInstance()->channel().tick(); });
    daemon.tick(5);
    EXPECT_EQ(daemon.board.fpga(0x600000, 64), table) << n;
  }
}

TEST(RefusalTest, WhatIsAcknowledgedAndNotDoneIsLogged) {
  TestDaemon daemon;
  setTraceLevel(0);
  const struct {
    const char* what;
    peer::Frame frame;
  } kCases[] = {
      {"no such device type", {.deviceType = 5, .address = kBackupInfo, .length = 1}},
      {"no such register space", {.address = 0x7F000000, .length = 1}},
      {"neither read nor write", {.code = 2, .address = kBackupInfo, .length = 1}},
  };
  for (const auto& each : kCases) {
    daemon.trace();
    EXPECT_EQ(daemon.ask(each.frame).ack, 0) << each.what;
    EXPECT_THAT(daemon.trace(), Contains(StartsWith("Error"))) << each.what;
  }
  daemon.trace();
  EXPECT_EQ(daemon.read(kBackupInfo, 1).ack, 0);
  EXPECT_THAT(daemon.trace(), IsEmpty()) << "what was done";
  StubUtil::getInstance()->queue().Release();
  EXPECT_EQ(daemon.write(kBackupInfo, {1}).ack, kRefusal) << "nobody would do it";
}

TEST(ConnectionTest, WhoLeavesAndReturnsWithinATickIsToldEverythingAgain) {
  TestDaemon daemon;
  daemon.connect();
  daemon.tick(3);
  std::vector<std::string> first;
  for (const auto& push : daemon.pushes()) first.push_back(peer::toHex(peer::encode(push)));
  ASSERT_THAT(first, Not(IsEmpty()));
  daemon.tick(2);
  EXPECT_THAT(daemon.pushes(), IsEmpty());
  daemon.disconnect();
  daemon.connect();
  daemon.tick();
  std::vector<std::string> again;
  for (const auto& push : daemon.pushes()) again.push_back(peer::toHex(peer::encode(push)));
  EXPECT_THAT(again, Not(IsEmpty()));
  EXPECT_THAT(first, IsSupersetOf(again));
}

}  // namespace
