// The daemon as a whole, without its threads: requests, work, ticks, and faults at every place of a scenario.
#include "calc/screenrecord.h"
#include "daemontest.h"
#include "mcuctrace.h"
#include "proto/store/paratables.h"

namespace {

using namespace ORVE_MCUC;
using testing::AnyOf;
using testing::IsEmpty;
using testing::Not;
using Bytes = peer::Bytes;

constexpr uint32_t kRecord = 0x02810000;
constexpr uint32_t kStoredTable = 0xA3C000;
constexpr std::size_t kTableSize = 64;

Bytes wall(uint8_t rows, uint8_t columns) {
  std::array<uint8_t, shortcut::kUsedSize> record{};
  shortcut::putSmartScreen(record, {rows, columns, 4, 3, {}});
  return {record.begin() + shortcut::kModeAt, record.end()};
}

class WholeDaemon : public DaemonTest {
 protected:
  /** What a peer does to configure a wall, until all of it has happened. */
  void configure(const Bytes& record) {
    daemon.write(kRecord + shortcut::kModeAt, record);
    daemon.settle();
  }
  Bytes fpgaWall() const { return daemon.board.fpga(0x600000, kTableSize); }
  Bytes storedWall() const { return daemon.board.flash(kStoredTable, kTableSize); }
};

TEST_F(WholeDaemon, AWallIsCalculatedOnceNoSubmissionFollows) {
  EXPECT_EQ(daemon.write(kRecord + shortcut::kModeAt, wall(2, 4)).ack, 0);
  EXPECT_EQ(daemon.workOff(), 1U);
  daemon.tick();
  EXPECT_THAT(storedWall(), Bytes(kTableSize)) << "another submission may follow";
  daemon.tick();
  EXPECT_THAT(storedWall(), Not(Bytes(kTableSize)));
  EXPECT_EQ(fpgaWall(), storedWall());
}

TEST_F(WholeDaemon, TheStoreOfANewProgramIsFreshAndFilledFromFlash) {
  configure(wall(2, 4));
  const Bytes table = fpgaWall();
  const Bytes output = daemon.board.fpga(0x1EC, 4);
  TempAdvCfgPortRow[9] = 7;
  daemon.powerOn();
  EXPECT_EQ(TempAdvCfgPortRow[9], 1);
  EXPECT_EQ(fpgaWall(), table);
  EXPECT_EQ(daemon.read(kRecord, 1).data, Bytes{shortcut::kSmart});
  EXPECT_EQ(daemon.board.fpga(0x1EC, 4), output);
  EXPECT_THAT(TempAdvCfgPortRow, testing::Each(1));
  EXPECT_THAT(TempAdvCfgPortCol, testing::Each(1));
}

TEST_F(WholeDaemon, WhoIsConnectedIsToldAndNobodyElse) {
  daemon.tick();
  daemon.board.setFpga(0x1D7, {1});
  daemon.tick();
  EXPECT_THAT(daemon.pushes(), IsEmpty());
  daemon.connect();
  daemon.tick(20);
  EXPECT_THAT(daemon.pushes(), Not(IsEmpty()));
  EXPECT_THAT(daemon.pushes(), IsEmpty()) << "taken already";
  daemon.tick(20);
  EXPECT_THAT(daemon.pushes(), IsEmpty()) << "nothing changed";
}

TEST_F(WholeDaemon, MessagesThatAreNotAnsweredStillReachIt) {
  for (const peer::Head& head : {peer::Head{.large = 0x1D}, {.small = 2}, {.small = 3}})
    EXPECT_FALSE(daemon.exchange(peer::encode(peer::Frame{}), head)) << head.small;
  for (const std::size_t longer : {0U, 1U}) {
    const Bytes longest = peer::encode(
        peer::Frame{.code = peer::kWrite, .address = 0x02300000, .data = Bytes(peer::kMaxData + longer)});
    EXPECT_EQ(daemon.exchange(longest).has_value(), longer == 0);
  }
  setTraceLevel(0);
  Bytes frame = peer::encode(peer::Frame{.address = 0xF0000000, .length = 1});
  frame.back() ^= 1;
  const auto reply = daemon.exchange(frame);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->head.result, 2U);
  EXPECT_THAT(daemon.trace("Checkout"), testing::SizeIs(1));
  EXPECT_THAT(daemon.trace(), IsEmpty());
}

TEST_F(WholeDaemon, PowerMayGoAtEveryFlashWriteOfAWall) {
  configure(wall(2, 4));
  const Bytes before = storedWall();
  configure(wall(3, 3));
  const Bytes after = storedWall();
  ASSERT_NE(after, before);
  uint32_t n = 1;
  const auto scenario = [&] { configure(wall(3, 3)); };
  for (configure(wall(2, 4)); daemon.cutPowerAt(n, scenario); ++n, configure(wall(2, 4))) {
    daemon.powerOn();
    EXPECT_THAT(storedWall(), AnyOf(before, after)) << "cut at write " << n;
    configure(wall(3, 3));
    ASSERT_EQ(storedWall(), after) << "cut at write " << n;
    ASSERT_EQ(fpgaWall(), after) << "cut at write " << n;
  }
  EXPECT_GT(n, 10U);
}

TEST_F(WholeDaemon, AnyCallMayFailOnceAndTheNextWallIsWhole) {
  configure(wall(3, 3));
  const Bytes after = storedWall();
  for (const Fault kind :
       {Fault::FpgaWrite, Fault::FpgaRead, Fault::FlashWrite, Fault::FlashRead, Fault::CardRead}) {
    configure(wall(2, 4));
    uint32_t n = 1;
    while (daemon.failAt(kind, n, [&] { configure(wall(3, 3)); })) {
      configure(wall(3, 3));
      ASSERT_EQ(storedWall(), after) << "kind " << static_cast<int>(kind) << ", call " << n;
      ASSERT_EQ(fpgaWall(), after) << "kind " << static_cast<int>(kind) << ", call " << n;
      configure(wall(2, 4));
      ++n;
    }
    EXPECT_GT(n, 1U) << static_cast<int>(kind);
  }
}

TEST_F(WholeDaemon, ADayPassesAtOnce) {
  const int64_t start = daemon.board.clock();
  daemon.advance(std::chrono::hours(24));
  daemon.tick();
  const int64_t passed = daemon.board.clock() - start;
  EXPECT_GE(passed, 24 * 3600);
  EXPECT_LE(passed, 24 * 3600 + 1) << "a second of the host's clock may turn meanwhile";
}

}  // namespace
