// The message channel: what becomes of a request, a work item or a tick that runs out of memory, what a peer
// is not told, and who is told everything.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "../allocations.h"
#include "calc/screenrecord.h"
#include "maps/registermap.h"
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
using testing::HasSubstr;
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

// What LSD was told since the last time.
std::vector<std::string> told(TestDaemon& daemon) {
  std::vector<std::string> all;
  for (const auto& push : daemon.pushes()) all.push_back(peer::toHex(peer::encode(push)));
  return all;
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
      const auto errors = daemon.trace("===");
      if (replies.empty()) {
        EXPECT_THAT(errors, Contains(HasSubstr("reply message Failed"))) << frame.address << " " << n;
        continue;
      }
      ASSERT_THAT(replies, SizeIs(1)) << frame.address << " " << n;
      EXPECT_THAT(replies[0].ack, AnyOf(0, kRefusal));
      const bool noBlock = std::ranges::any_of(
          errors, [](const std::string& line) { return line.find("new a pDataBlock") != line.npos; });
      if (noBlock && frame.address != kRecord + shortcut::kModeAt) {  // which tells of every refusal
        EXPECT_EQ(replies[0].ack, 0) << "who asked is not told";
      }
      if (replies[0].ack == kRefusal) {
        EXPECT_THAT(replies[0].data, IsEmpty());
        EXPECT_EQ(queued, 0U);
      }
      if (replies[0].ack == kRefusal || (frame.code == peer::kWrite && queued == 0)) {
        EXPECT_THAT(errors, Contains(AnyOf(HasSubstr("out of memory"), HasSubstr("new a pDataBlock"))))
            << frame.address << " " << n;
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
    ASSERT_EQ(daemon.ask(frame).ack, 0);
    const std::size_t before = allocations();
    daemon.workOff();
    const std::size_t ofItem = allocations() - before;
    bool more = true;
    for (std::size_t n = 1; more; ++n) {
      ASSERT_EQ(daemon.ask(frame).ack, 0);
      ASSERT_EQ(daemon.write(kBackupInfo + 100, {static_cast<uint8_t>(n)}).ack, 0);
      std::size_t handled = 0;
      more = failAllocation(n, [&] { handled = daemon.workOff(); });
      EXPECT_EQ(handled, 2U);
      if (n > ofItem) continue;  // the next item itself ran out of it
      EXPECT_EQ(daemon.read(kBackupInfo + 100, 1).data, Bytes{static_cast<uint8_t>(n)}) << frame.address;
    }
    EXPECT_EQ(daemon.read(kBackupInfo, 40).ack, 0);
  }
}

// LSD connects, and a wall that was submitted is due: whatever the tick lacks, in the end the wall is
// calculated and LSD knows every status.
TEST(MemoryTest, ATickThatRunsOutOfItIsMadeUpForByTheNext) {
  constexpr uint32_t kWall = 0x600000;
  TestDaemon daemon;
  const auto tell = [&](std::size_t n) {
    daemon.disconnect();
    daemon.write(kRecord + shortcut::kModeAt, wall());
    daemon.workOff();
    daemon.tick();
    daemon.board.setFpga(kWall, Bytes(64, 0));
    daemon.connect();
    daemon.pushes();
    const bool failed = failAllocation(n, [] { StubUtil::getInstance()->channel().tick(); });
    daemon.tick(2);
    return failed;
  };
  const auto known = [&] {
    std::map<uint32_t, Bytes> statuses;
    for (auto& push : daemon.pushes()) statuses[push.address] = push.data;
    return statuses;
  };
  setTraceLevel(0);
  ASSERT_FALSE(tell(0));
  const Bytes table = daemon.board.fpga(kWall, 64);
  ASSERT_NE(table, Bytes(64, 0));
  const auto all = known();
  ASSERT_THAT(all, Not(IsEmpty()));
  for (std::size_t n = 1; tell(n); ++n) {
    EXPECT_EQ(daemon.board.fpga(kWall, 64), table) << n;
    const bool sendFailed = !daemon.trace("reply message Failed").empty();  // such a push is lost
    EXPECT_TRUE(known() == all || sendFailed) << n;
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
      {"no such code, basic hardware", {.code = 2, .address = reg::kHwBasicInfo, .length = 1}},
      {"no such code, FPGA bus", {.code = 2, .address = reg::kTestPrint, .length = 1}},
      {"no such code, receiving card", {.deviceType = 1, .code = 2, .address = 0x02000001, .length = 1}},
      {"no such code, multi-function card", {.deviceType = 2, .code = 2, .address = 0x02000001, .length = 1}},
      {"no such code, distribution card", {.deviceType = 3, .code = 2, .address = 0x02000001, .length = 1}},
      {"no such code, launcher", {.deviceType = 4, .code = 2, .address = 0x02000001, .length = 1}},
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
  daemon.tick(20);
  const auto first = told(daemon);
  ASSERT_THAT(first, Not(IsEmpty()));
  daemon.tick(2);
  EXPECT_THAT(daemon.pushes(), IsEmpty());
  daemon.disconnect();
  daemon.connect();
  daemon.tick();
  const auto again = told(daemon);
  EXPECT_THAT(again, Not(IsEmpty()));
  EXPECT_THAT(first, IsSupersetOf(again));
}

}  // namespace
