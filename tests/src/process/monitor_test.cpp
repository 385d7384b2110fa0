// Ticks of the flag and status thread, called one by one, and what LSD is told in each.
#include <gmock/gmock.h>

#include "../allocations.h"
#include "process/tprocess_ctl.h"
#include "proto/store/data_common.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using Fault = TestBoard::Fault;
using testing::ElementsAre;
using testing::IsEmpty;
using Pushes = std::vector<std::string>;  // "1f 0f": FPGA register or whole address, data

struct Change {
  uint32_t at;
  std::vector<uint8_t> bytes;
};

const std::vector<Change> kAllZero{{0x18, std::vector<uint8_t>(0x1FC - 0x18)}};

// Nobody has been told anything, and all statuses are zero.
class MonitorTest : public testing::Test {
 protected:
  MonitorTest() : daemon("fpga_autoload = no\ncopper_ports =\ncard_width = 256\n") {
    change(kAllZero);
    daemon.tick(12);
  }

  static Data_Global& store() { return *Data_Global::getInstance(); }
  void change(const std::vector<Change>& changes) {
    for (const Change& each : changes) daemon.board.setFpga(each.at, each.bytes);
  }
  // One tick and what LSD is told in it.
  Pushes tick() {
    daemon.tick();
    Pushes pushes;
    for (const peer::Frame& push : daemon.pushes()) {
      std::array<char, 16> address{};
      std::snprintf(address.data(), address.size(), "%x ",
                    push.address < 0x02000200 ? push.address - 0x02000000 : push.address);
      pushes.push_back(address.data() + peer::toHex(push.data));
    }
    return pushes;
  }
  // LSD is connected and knows that all statuses are zero.
  void lsdKnowsAll() {
    daemon.connect();
    EXPECT_THAT(tick(), ElementsAre("1d7 00"));
  }

  TestDaemon daemon;
};

TEST_F(MonitorTest, EveryChangeIsPushedWithItsGroupInTheOrderOfTheChecksAndOnce) {
  struct Case {
    std::vector<Change> changes;
    Pushes pushes;
  };
  const std::vector<Case> kCases{
      {{{0x19, {0x80}}}, {"18 00800000", "98 00000000", "100 00000000"}},
      {{{0x9B, {1}}, {0x103, {2}}}, {"18 00800000", "98 00000001", "100 00000002"}},
      {{{0x104, {9}}}, {}},
      {{{0x120, {7}}}, {"1e 00", "9e 00", "120 0700"}},
      {{{0x121, {8}}}, {"1e 00", "9e 00", "120 0708"}},
      {{{0x1FB, {5}}}, {"1f6 00", "1f7 00", "1f8 00", "1f9 00", "1fa 00", "1fb 05"}},
      {{{0x126, {3}}}, {"1f 00", "9f 00", "126 0300"}},
      {{{0x1D7, {0xA1}}}, {"1d7 a1"}},
      {{{0x1F3, {1}}}, {"1f2 00", "1f3 01"}},
      {{{0x1F4, {2}}}, {"1f4 02", "1f5 00"}},
      {{{0x1DA, {6}}}, {"1da 06", "1da 06"}},
      {{{0x1E1, {4}}}, {"1e0 00", "1e1 04"}},
      {{{0x1DA, {0}}, {0x9F, {0xF1}}, {0x9E, {1}}},
       {"1e 00", "9e 01", "120 0708", "1f 00", "9f f1", "126 0300", "1da 00", "1da 00"}},
      {kAllZero,
       {"18 00000000", "98 00000000", "100 00000000", "1e 00",  "9e 00",  "120 0000", "1f6 00",   "1f7 00",
        "1f8 00",      "1f9 00",      "1fa 00",       "1fb 00", "1f 00",  "9f 00",    "126 0000", "1d7 00",
        "1f2 00",      "1f3 00",      "1f4 00",       "1f5 00", "1e0 00", "1e1 00"}},
  };
  lsdKnowsAll();
  for (const Case& each : kCases) {
    SCOPED_TRACE(each.changes.front().at);
    store().LinkStateChanged = 0;
    change(each.changes);
    EXPECT_EQ(tick(), each.pushes);
    store().LinkStateChanged = 0;
    EXPECT_THAT(tick(), IsEmpty());
  }
}

TEST_F(MonitorTest, TheImageMirrorsPushedGroupsButNotTheStatusesBehindIt) {
  store().SendParameterReg.fill(0xEE);
  lsdKnowsAll();
  change({{0x1F, {1, 0x77}}, {0x127, {2}}, {0x1F2, {3}}, {0x1F6, {4}}});
  tick();
  const auto& image = store().SendParameterReg;
  EXPECT_EQ(image[0x1F], 1);
  EXPECT_EQ(image[0x20], 0xEE);
  EXPECT_EQ(image[0x127], 2);
  EXPECT_EQ(image[0x1D7], 0);
  for (std::size_t at = 0x1F0; at < 0x200; ++at) EXPECT_EQ(image[at], 0xEE) << at;
}

TEST_F(MonitorTest, WhatWasConfiguredStaysInTheImageWhateverTheFpgaShows) {
  store().SendParameterReg.fill(0xEE);
  lsdKnowsAll();
  change({{0x18, {1, 1, 1, 1}}, {0x98, {2, 2, 2, 2}}, {0x100, {3, 3, 3, 3}}, {0x1DA, {4}}, {0x1E0, {5, 6}}});
  EXPECT_THAT(tick(), ElementsAre("18 01010101", "98 02020202", "100 03030303", "1da 04", "1e0 05", "1e1 06",
                                  "1da 04"));
  for (const std::size_t at : {0x18U, 0x1BU, 0x98U, 0x9BU, 0x100U, 0x103U, 0x1DAU, 0x1E0U, 0x1E1U})
    EXPECT_EQ(store().SendParameterReg[at], 0xEE) << at;
}

TEST_F(MonitorTest, AGroupThatCannotBeReadOnceMoreIsPushedAsTheCheckReadIt) {
  const struct {
    std::vector<Change> changes;
    uint32_t first, last;  // what cannot be read a second time
    Pushes pushes;
  } cases[] = {
      {{{0x1E, {7}}}, 0x1E, 0x1E, {"1e 07", "9e 00", "120 0000"}},
      {{{0x9E, {8}}}, 0x9E, 0x9E, {"1e 07", "9e 08", "120 0000"}},
      {{{0x121, {9}}}, 0x121, 0x121, {"1e 07", "9e 08", "120 0009"}},
      {{{0x1F, {1}}}, 0x1F, 0x1F, {"1f 01", "9f 00", "126 0000"}},
      {{{0x9F, {2}}}, 0x9F, 0x9F, {"1f 01", "9f 02", "126 0000"}},
      {{{0x126, {3}}}, 0x126, 0x126, {"1f 01", "9f 02", "126 0300"}},
      {{{0x1D7, {0x51}}}, 0x1D7, 0x1D7, {"1d7 51"}},
  };
  lsdKnowsAll();
  for (const auto& [changes, first, last, pushes] : cases) {
    store().LinkStateChanged = 0;
    change(changes);
    daemon.board.fault(Fault::FpgaRead, {3, 1, first, last});
    EXPECT_EQ(tick(), pushes);
    for (uint32_t at = first; at <= last; ++at)
      EXPECT_EQ(store().SendParameterReg[at], daemon.board.fpga(at, 1)[0]) << at;
    EXPECT_EQ(tick(), Pushes{});
    daemon.board.clearFaults();
  }
  // What not even the check could read is not made up: the image keeps it.
  store().LinkStateChanged = 0;
  store().SendParameterReg[0x9E] = 0x33;
  change({{0x1E, {1}}});
  daemon.board.fault(Fault::FpgaRead, {TestBoard::kEveryCall, 0, 0x9E, 0x9E});
  EXPECT_THAT(tick(), ElementsAre("1e 01", "9e 33", "120 0009"));
}

TEST_F(MonitorTest, LinksThatATickHasSeenHoldUntilTheNext) {
  EXPECT_EQ(store().GetRecvCardSize_EnvNew(), -1);
  for (const Change& appearing : {Change{0x1F, {1}}, Change{0x1F2, {1}}, Change{0x1F5, {1}}}) {
    change({appearing});
    EXPECT_EQ(store().GetRecvCardSize_EnvNew(), -1) << appearing.at;
    change(kAllZero);
  }
}

TEST_F(MonitorTest, ALinkThatComesBackBetweenTwoTicksIsNoChange) {
  lsdKnowsAll();
  change({{0x1F, {1}}});
  change({{0x1F, {0}}});
  EXPECT_THAT(tick(), IsEmpty());
  EXPECT_EQ(store().LinkStateChanged, 0);
}

TEST_F(MonitorTest, ANewConnectionIsToldAllThatIsNotZeroInItsFirstTick) {
  change({{0x18, {0x80}}, {0x120, {7}}, {0x1F, {1}}, {0x1DA, {6}}, {0x1F5, {2}}, {0x1D7, {0xFF}}});
  const auto kTold = ElementsAre("18 80000000", "98 00000000", "100 00000000", "1e 00", "9e 00", "120 0700",
                                 "1f 01", "9f 00", "126 0000", "1f4 00", "1f5 02", "1da 06", "1da 06");
  for (int connection = 0; connection < 2; ++connection) {
    daemon.connect();
    EXPECT_THAT(tick(), kTold);
    EXPECT_THAT(tick(), IsEmpty());
    daemon.disconnect();
    daemon.tick();
  }
  daemon.connect();
  tick();
  Tprocess_ctl::getInstance()->OptToNetEnableOnce = true;
  EXPECT_THAT(tick(), kTold);
  EXPECT_THAT(tick(), IsEmpty());
}

TEST_F(MonitorTest, TheCardsBehindAChangedLinkAreMeasuredThreeTicksLater) {
  const struct {
    std::vector<Change> linked;
    Pushes pushes;
  } links[] = {{{{0x1F, {1}}, {0xF05100, {1}}}, {"1f 01", "9f 00", "126 0000"}},
               {{{0x1F2, {4}}, {0xF04000, {4}}}, {"1f2 04", "1f3 00"}},
               {{{0x1F5, {2}}, {0xF04003, {2}}}, {"1f4 00", "1f5 02"}}};
  lsdKnowsAll();
  for (const auto& [linked, pushes] : links) {
    change(linked);
    EXPECT_EQ(tick(), pushes);
    EXPECT_EQ(store().linkedPorts(), linked[0].at == 0x1F ? 1 : linked[0].at == 0x1F2 ? 4 : 0x200);
    EXPECT_THAT(tick(), IsEmpty());
    EXPECT_THAT(tick(), IsEmpty());
    EXPECT_THAT(tick(), ElementsAre("2100006 00018000"));
    for (int i = 0; i < 4; ++i) EXPECT_THAT(tick(), IsEmpty());
    change(kAllZero);
    tick();
    store().LinkStateChanged = 0;
  }
}

TEST_F(MonitorTest, CardsThatDoNotAnswerAreAskedAgainAndGivenUpAfter30Counts) {
  daemon.board.failNext(Fault::CardRead, 2);
  lsdKnowsAll();
  change({{0x1F, {1}}, {0xF05100, {1}}});
  for (int i = 0; i < 5; ++i) tick();
  EXPECT_THAT(tick(), ElementsAre("2100006 00018000"));

  daemon.board.failNext(Fault::CardRead, TestBoard::kEveryCall);
  change({{0x1F, {3}}});
  for (int i = 0; i < 29; ++i) tick();
  EXPECT_EQ(store().LinkStateChanged, 30);
  tick();
  EXPECT_EQ(store().LinkStateChanged, 0);
}

TEST_F(MonitorTest, WithoutALinkOrWithoutLsdTheMeasurementIsGivenUpAfter10Counts) {
  for (const uint8_t links : {uint8_t{0}, uint8_t{1}}) {
    if (links == 0) daemon.connect();
    change({{0x1F, {1}}});
    daemon.tick();
    change({{0x1F, {links}}});
    daemon.tick();
    store().LinkStateChanged = 1;
    daemon.tick(9);
    EXPECT_EQ(store().LinkStateChanged, 10);
    daemon.tick();
    EXPECT_EQ(store().LinkStateChanged, 0);
    daemon.disconnect();
  }
}

TEST_F(MonitorTest, AReadThatFailsIsNoChangeAndTheChangeIsPushedLater) {
  lsdKnowsAll();
  change({{0x1F, {1}}, {0x1D7, {1}}, {0x18, {1}}, {0x1F2, {1}}});
  daemon.board.failNext(Fault::FpgaRead, TestBoard::kEveryCall);
  EXPECT_THAT(tick(), IsEmpty());
  daemon.board.failNext(Fault::FpgaRead, 0);
  EXPECT_EQ(tick().size(), 9U);
}

TEST_F(MonitorTest, ALinkIsNotLostToANewConnectionWhoseTickCannotReadIt) {
  lsdKnowsAll();
  change({{0x1F, {2}}, {0x1F4, {4}}});
  tick();
  EXPECT_EQ(store().linkedPorts(), 0x0006);
  daemon.disconnect();
  daemon.tick();
  daemon.connect();
  daemon.board.failNext(Fault::FpgaRead, TestBoard::kEveryCall);
  tick();
  EXPECT_EQ(store().linkedPorts(), 0x0006);
}

TEST_F(MonitorTest, AnIdleTickReadsEachStatusOnceAndAllocatesNothing) {
  lsdKnowsAll();
  const std::size_t allocated = allocations();
  daemon.tick();
  EXPECT_EQ(allocations(), allocated);
  // The counter of failures counts the reads: each is tried three times.
  constexpr uint32_t kMany = 200;
  constexpr uint32_t kReads = 18;
  daemon.board.failNext(Fault::FpgaRead, kMany);
  daemon.tick();
  EXPECT_EQ(simboard::faultLeft(Fault::FpgaRead).calls, kMany - 3 * kReads);
}

TEST_F(MonitorTest, AFactoryResetStopsTheChecksAndAnInvalidStateIsResetOnce) {
  lsdKnowsAll();
  change({{0x1D7, {1}}});
  constexpr uint8_t kRunning = 2;
  store().RebootRF = kRunning;
  EXPECT_THAT(tick(), IsEmpty());
  EXPECT_EQ(store().RebootRF, kRunning);
  store().RebootRF = 7;
  EXPECT_THAT(tick(), IsEmpty());
  EXPECT_EQ(store().RebootRF, 0);
  EXPECT_THAT(tick(), ElementsAre("1d7 01"));
}

TEST_F(MonitorTest, EveryBurstOfSubmissionsWaitsForAWholeQuietTick) {
  auto& submissions = store().CalculateParaHandlerCnt;
  for (int burst = 0; burst < 2; ++burst) {
    submissions = 1;
    daemon.tick();
    submissions = 3;
    daemon.tick();
    EXPECT_EQ(submissions, 3U);
    daemon.tick();
    EXPECT_EQ(submissions, 0U);
  }
  submissions = 3;
  daemon.tick();
  EXPECT_EQ(submissions, 3U);
  store().forgetSubmissions();
  submissions = 3;
  daemon.tick();
  EXPECT_EQ(submissions, 3U) << "as many as before, but others";
  daemon.tick();
  EXPECT_EQ(submissions, 0U);
}

}  // namespace
}  // namespace ORVE_MCUC
