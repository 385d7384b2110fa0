// The brightness control on a wall in virtual time: nodes over months, clocks that are set, sensors,
// watchdog.
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>

#include "brightness_plans.h"
#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int64_t kDay = 86400;

// Summer time from the last Sunday of March to that of October, at 1 o'clock UTC.
int32_t middleEurope(int64_t utc) {
  const LocalMoment moment = momentOf(utc);
  const auto lastSunday = [&](int month) {
    const int64_t last = secondsOf({.year = moment.year, .month = month, .day = 31, .hour = 1});
    return last - (momentOf(last).weekday - 1) * kDay;
  };
  return utc >= lastSunday(3) && utc < lastSunday(10) ? 7200 : 3600;
}

TEST(BrightnessNodesTest, ATimeBelongsToTheNodeThatCameLast) {
  const BrightnessFile file = programmablePlan(kThreeNodes);
  const ProgrammableNodes nodes(file);
  const struct {
    int hour, minute, node;
  } rows[] = {{0, 0, 2},  {3, 0, 2},   {5, 59, 2}, {6, 0, 0},  {17, 59, 0},
              {18, 0, 1}, {21, 59, 1}, {22, 0, 2}, {23, 59, 2}};
  for (const auto& row : rows)
    EXPECT_EQ(CurrentTimeBelongToWhichNode(nodes, {.hour = row.hour, .minute = row.minute}), row.node)
        << row.hour;
  // The mixed plan knows enabled nodes only, and may have none.
  std::vector<PlanNode> some{
      {1, 0, 0, false, 0x7F, 0}, {6, 0, 0}, {12, 0, 0, false, 0x7F, 0}, {18, 0, 0, false, 0x7F, 7}};
  const auto mixedNode = [&](int hour) {
    const BrightnessFile mixed = mixedPlan(some);
    return MixAdjCurrentTimeNode(MixedNodes(mixed, kTestNodes), {.hour = hour});
  };
  EXPECT_EQ(mixedNode(3), 3);
  EXPECT_EQ(mixedNode(6), 1);
  EXPECT_EQ(mixedNode(13), 1);
  EXPECT_EQ(mixedNode(18), 3);
  for (PlanNode& node : some) node.enabled = 0;
  EXPECT_EQ(mixedNode(13), kNoNode);
}

TEST(BrightnessNodesTest, TheWeekdayOfADateIsRightInEveryCentury) {
  for (int64_t day = 0; day < int64_t{400} * 366; ++day) {
    const LocalMoment moment = momentOf(day * kDay);
    ASSERT_EQ(daysOf(moment), day);
    ASSERT_EQ(weekdayOfDate(moment), (moment.weekday + 5) % 7 + 1) << day;
  }
}

// Lets quiet hours pass in steps of ten minutes; around a node every tick is run.
class LongWall : public VirtualWall {
 public:
  using VirtualWall::VirtualWall;
  void live(int64_t seconds) {
    const int64_t end = localSeconds() + seconds;
    while (localSeconds() < end) {
      for (int i = 0; i < 10; ++i) tick();
      if (quiet()) pause(10 * 60 * 1000);
    }
  }

 private:
  bool quiet() {
    const BrightnessSchedule state = control().state();
    const int64_t due = (int64_t{fromBcd(state.TimeIntHour)} * 60 + fromBcd(state.TimeIntMin)) * 60;
    const int64_t away = (due - localSeconds() % kDay + kDay) % kDay;
    return away > 700 && away < kDay - 300;
  }
};

// Each node's brightness goes out once a day: counted by local days, without repetitions of ten minutes.
void expectOnceADay(const VirtualWall& wall, const std::vector<uint8_t>& brightnesses, int64_t firstDay,
                    int days) {
  std::map<std::pair<int64_t, uint8_t>, int> times;
  for (const SentBrightness& sent : wall.sent) {
    if (sent.reason == BrightnessReason::Timetable) ++times[{sent.at / kDay, sent.value}];
  }
  for (int64_t day = firstDay; day < firstDay + days; ++day) {
    for (const uint8_t value : brightnesses) {
      const int count = times[{day, value}];
      ASSERT_EQ(count, 1) << "brightness " << int{value} << " on day " << momentOf(day * kDay).year + 2000
                          << '-' << momentOf(day * kDay).month << '-' << momentOf(day * kDay).day;
    }
  }
}

// Over a leap day, all month ends and both changes of the local clock, one of which leaves out the hour of a
// node and one of which repeats it.
TEST(BrightnessYearTest, EveryNodeOfATimetableFiresOnceADayFor400Days) {
  for (const bool alone : {false, true}) {
    const std::vector<PlanNode> nodes =
        alone ? std::vector<PlanNode>{{2, 30, 9}}
              : std::vector<PlanNode>{{0, 0, 20}, {2, 10, 21}, {2, 50, 22}, {12, 0, 23}, {23, 59, 24}};
    LongWall wall(programmablePlan(nodes), at(2023, 11, 20, 13));
    wall.zone = middleEurope;
    wall.live(401 * kDay);
    std::vector<uint8_t> values;
    for (const PlanNode& node : nodes) values.push_back(node.percent);
    if (!alone) {
      // On the day that leaves the hour out, its nodes come together: the later one is in force.
      const int64_t leap = at(2024, 3, 31) / kDay;
      EXPECT_EQ(std::count_if(wall.sent.begin(), wall.sent.end(),
                              [&](const SentBrightness& s) { return s.at / kDay == leap && s.value == 22; }),
                1);
      expectOnceADay(wall, values, at(2023, 11, 21) / kDay, 131);
      expectOnceADay(wall, values, leap + 1, 260);
    } else {
      expectOnceADay(wall, values, at(2023, 11, 21) / kDay, 399);
    }
  }
}

TEST(BrightnessYearTest, ANodeBehindAChangeOfTheClockComesInItsMinute) {
  for (const int64_t before : {at(2024, 3, 30, 13), at(2024, 10, 26, 13)}) {
    LongWall wall(programmablePlan({{0, 0, 20}, {12, 0, 23}}), before);
    wall.zone = middleEurope;
    wall.live(3 * kDay);
    ASSERT_EQ(wall.sent.size(), 1U + 6);
    for (std::size_t i = 1; i < wall.sent.size(); ++i)
      EXPECT_EQ(wall.sent[i].at % kDay / 60, i % 2 == 1 ? 0 : 12 * 60) << i;
  }
}

TEST(BrightnessYearTest, EverySlotOfAMixedPlanTakesItsTurnFor400Days) {
  const std::vector<PlanNode> nodes{{5, 0, 20}, {9, 30, 0, true}, {17, 0, 40}, {21, 15, 60}};
  LongWall wall(mixedPlan(nodes, true), at(2023, 11, 20, 13));
  wall.zone = middleEurope;
  wall.light = [](int64_t, const SensorRecord&) { return 550; };
  wall.live(400 * kDay);
  // Stepwise changes: what counts is the last step of each.
  std::map<std::pair<int64_t, uint8_t>, int> reached;
  for (const SentBrightness& sent : wall.sent) {
    if (sent.reason != BrightnessReason::Resend) ++reached[{sent.at / kDay, sent.value}];
  }
  for (int64_t day = at(2023, 11, 21) / kDay; day < at(2024, 12, 20) / kDay; ++day) {
    for (const int value : {51, 102, 153}) ASSERT_GE((reached[{day, static_cast<uint8_t>(value)}]), 1) << day;
    ASSERT_GE((reached[{day, 140}]), 1) << "the sensors' brightness on day " << day;
  }
}

// A weekday's bit is judged as Monday = 1 in the run.
TEST(BrightnessYearTest, SlotsOfWeekdaysComeOnTheirDaysOnly) {
  const std::vector<PlanNode> nodes{{8, 0, 70, false, 0b0011111}, {10, 0, 30, false, 0b1100000}, {12, 0, 90}};
  LongWall wall(mixedPlan(nodes), at(2024, 1, 1, 7));
  wall.live(400 * kDay);
  std::map<uint8_t, int> count;
  for (const SentBrightness& sent : wall.sent) {
    if (sent.reason != BrightnessReason::Timetable || sent.at < at(2024, 1, 2)) continue;
    const int weekday = weekdayOfDate(momentOf(sent.at));
    ++count[sent.value];
    if (sent.value != brightnessOf(90)) {
      ASSERT_EQ(sent.value, brightnessOf(weekday <= 5 ? 70 : 30));
    }
  }
  EXPECT_EQ(count[brightnessOf(70)] + count[brightnessOf(30)], count[brightnessOf(90)]);
  EXPECT_GT(count[brightnessOf(70)], 280);
}

TEST(BrightnessYearTest, SensorsDecideInTheAutomaticModeFor400Days) {
  BrightnessFile file{};
  const std::array<uint8_t, 12> header{brightness::kAutomatic, 1, 0, 0, 0, 0xE8, 0x03, 0, 0, 220, 20, 4};
  std::copy(header.begin(), header.end(), file.begin());
  LongWall wall(file, at(2023, 11, 20, 13));
  wall.light = [](int64_t when, const SensorRecord&) { return when / kDay % 2 == 0 ? 600 : 0; };
  for (int day = 0; day < 400; ++day) {
    const std::size_t before = wall.sent.size();
    wall.runUntil(wall.localSeconds() + 400);  // two decisions at least, of one light
    ASSERT_GE(wall.sent.size(), before + 2) << day;
    EXPECT_EQ(wall.sent.back().value, wall.localSeconds() / kDay % 2 == 0 ? 120 : 20);
    EXPECT_EQ(wall.control().state().LastGlobalBri, wall.sent.back().value);
    wall.setClock(wall.localSeconds() + kDay - 400);
  }
}

TEST(BrightnessYearTest, WatchdogModesKeepTheirPlanFor400Days) {
  LongWall wall(mixedPlan(kThreeNodes, false, brightness::kHardware), at(2023, 11, 20, 13));
  wall.live(400 * kDay);  // no heartbeat ever: the plan has the wall
  expectOnceADay(wall, {brightnessOf(60), brightnessOf(30), brightnessOf(10)}, at(2023, 11, 21) / kDay, 398);
  LongWall black(mixedPlan({}, false, brightness::kSerialBlack), at(2023, 11, 20, 13));
  for (int day = 0; day < 400; ++day) {
    black.sent.clear();
    for (int second = 0; second < 60; ++second) {
      black.control().heartbeat();
      black.runUntil(black.localSeconds() + 1);
    }
    ASSERT_EQ(valuesOf(black), std::vector<uint8_t>(day == 0 ? 0 : 1, 0x00)) << day;
    black.runUntil(black.localSeconds() + 50);
    ASSERT_EQ(black.sent.back().value, 0xFF) << day;
    black.setClock(black.localSeconds() + kDay - 110);
  }
}

// Wherever the clock is set to, two minutes later the wall has the brightness of the node in force. A step
// back of less than two hours leaves it with the node that has come.
TEST(BrightnessClockTest, AClockThatIsSetLeavesNothingStuck) {
  std::mt19937 random(11);
  for (const bool mixed : {false, true}) {
    const BrightnessFile file = mixed ? mixedPlan(kThreeNodes) : programmablePlan(kThreeNodes);
    VirtualWall wall(file, at(2024, 6, 1, 12));
    wall.runUntil(at(2024, 6, 1, 12, 1));
    for (int i = 0; i < 300; ++i) {
      int64_t step = static_cast<int64_t>(random() % (4 * kDay)) - 2 * kDay;
      if (i % 50 == 0) step = int64_t{i % 100 == 0 ? -5000 : 5000} * kDay;  // another decade
      if (step < 0 && step > -7300) continue;
      wall.setClock(wall.localSeconds() + step);
      wall.runUntil(wall.localSeconds() + 130);
      const int node =
          CurrentTimeBelongToWhichNode(ProgrammableNodes(programmablePlan(kThreeNodes)), wall.now());
      const uint8_t value = kThreeNodes[static_cast<std::size_t>(node)].percent;
      ASSERT_EQ(wall.sent.back().value, mixed ? brightnessOf(value) : value) << i << " step " << step;
    }
  }
}

TEST(BrightnessClockTest, ANodeIsSeenInTheFirstFourSecondsOfItsMinuteOnly) {
  for (const auto& [second, fires] : {std::pair{0, true}, {3, true}, {4, false}, {30, false}}) {
    VirtualWall wall(programmablePlan(kThreeNodes), at(2024, 6, 1, 17, 58));
    wall.runUntil(at(2024, 6, 1, 17, 58, 1));
    wall.sent.clear();
    wall.setClock(at(2024, 6, 1, 18, 0, second));
    wall.control().TimeToOver_Handler();
    wall.runUntil(at(2024, 6, 1, 18, 0, second + 3));
    EXPECT_EQ(wall.sent.size(), fires ? 1U : 0U) << second;
  }
}

TEST(BrightnessClockTest, ADayThatIsRunTwiceFiresTwice) {
  VirtualWall wall(programmablePlan(kThreeNodes), at(2024, 6, 1, 21, 59, 50));
  wall.runUntil(at(2024, 6, 1, 22, 0, 10));
  wall.sent.clear();
  for (const int hour : {6, 18, 22, 6}) {  // the date stays
    wall.setClock(at(2024, 6, 1, hour - 1, 59, 58));
    wall.runUntil(at(2024, 6, 1, hour, 0, 4));
  }
  EXPECT_THAT(valuesOf(wall), ElementsAre(60, 30, 10, 60));
}

TEST(BrightnessClockTest, NodesOfOneMinuteAndAnImpossibleTimeDoNotEndTheCycle) {
  VirtualWall wall(programmablePlan({{6, 0, 1}, {25, 0, 2}, {18, 0, 3}, {18, 0, 4}}), at(2024, 6, 1, 5, 59));
  wall.runUntil(at(2024, 6, 1, 5, 59, 30));
  wall.sent.clear();
  wall.runUntil(at(2024, 6, 3, 5));
  EXPECT_THAT(valuesOf(wall), ElementsAre(1, 3, 4, 1, 3, 4));
}

TEST(BrightnessMixedTest, AGradualChangeTakesEveryStepAndMissesNoNode) {
  // Nodes a minute apart, each a full swing of 12.75 s.
  VirtualWall wall(mixedPlan({{12, 0, 0}, {12, 1, 100}, {12, 2, 0}, {12, 3, 2}}, true), at(2024, 6, 1, 12));
  wall.runUntil(at(2024, 6, 1, 12, 0, 30));
  EXPECT_THAT(valuesOf(wall), ElementsAre(0));
  wall.runUntil(at(2024, 6, 1, 12, 4));
  ASSERT_EQ(wall.sent.size(), 1U + 255 + 255 + 5);
  for (int i = 0; i <= 255; ++i) {
    ASSERT_EQ(wall.sent[static_cast<std::size_t>(i)].value, i);
    ASSERT_EQ(wall.sent[static_cast<std::size_t>(255 + i)].value, 255 - i);
  }
  EXPECT_LE(wall.sent[255].at - wall.sent[1].at, 13);
  EXPECT_GE(wall.sent[255].at - wall.sent[1].at, 12);
}

TEST(BrightnessMixedTest, APlanThatStartsInASlotOfAnotherDayBeginsAtOnceWithItsFirstBrightness) {
  const BrightnessFile plan = mixedPlan({{12, 0, 80}, {13, 0, 50, false, 0}, {14, 0, 30}}, true);
  VirtualWall wall(plan, at(2024, 6, 1, 12, 30));
  wall.runUntil(at(2024, 6, 1, 13, 30));
  wall.sent.clear();
  write(wall, plan, kTestLength);
  wall.runUntil(at(2024, 6, 1, 14, 1));
  EXPECT_THAT(valuesOf(wall), ElementsAre(brightnessOf(30)));
}

TEST(BrightnessMixedTest, ANodeThatComesDuringAGradualChangeIsNotLost) {
  // The sensors start a full swing just before the node's minute.
  BrightnessFile file = mixedPlan({{12, 0, 0, true}, {12, 1, 50}}, true);
  file[kTestMap + 3] = 0;  // 100 lux: 0 %
  file[brightness::kReadInterval] = file[brightness::kReadTimes] = 1;
  VirtualWall wall(file, at(2024, 6, 1, 12));
  int lux = 50;
  wall.light = [&](int64_t, const SensorRecord&) { return lux; };
  wall.runUntil(at(2024, 6, 1, 12, 0, 52));
  lux = 2000;
  wall.runUntil(at(2024, 6, 1, 12, 2));
  EXPECT_TRUE(std::any_of(wall.sent.begin(), wall.sent.end(), [](const auto& sent) {
    return sent.value == 255 && sent.at >= at(2024, 6, 1, 12, 1, 4);
  })) << "the change was to run into the node's first seconds";
  EXPECT_EQ(wall.sent.back().value, brightnessOf(50));
}

TEST(BrightnessMixedTest, AFixedSlotIsSentAgainEveryTenMinutes) {
  VirtualWall wall(mixedPlan({{12, 0, 80}}), at(2024, 6, 1, 12, 30));
  wall.runUntil(at(2024, 6, 1, 13, 31));
  EXPECT_THAT(valuesOf(wall), testing::Each(204));
  EXPECT_EQ(wall.sent.size(), 1U + 6);
  wall.control().SetBrightnessAdjustTable(brightness::kControl, std::array<uint8_t, 1>{0});
  wall.runUntil(at(2024, 6, 1, 15));
  EXPECT_EQ(wall.sent.size(), 1U + 6) << "switched off";
  wall.control().SetBrightnessAdjustTable(brightness::kControl, std::array<uint8_t, 1>{1});
  EXPECT_EQ(wall.sent.size(), 1U + 7) << "switched on";
}

TEST(BrightnessMixedTest, SensorsAreAveragedAndFallBackAfterThreeFailures) {
  VirtualWall wall(mixedPlan({{0, 0, 0, true}}), at(2024, 6, 1, 12));
  std::optional<uint16_t> lux = 550;
  int asked = 0;
  wall.light = [&](int64_t, const SensorRecord& sensor) {
    EXPECT_EQ(sensor, (SensorRecord{0, 0, 0, 1}));
    ++asked;
    return lux;
  };
  wall.runUntil(at(2024, 6, 1, 12, 0, 14));
  EXPECT_THAT(wall.sent, IsEmpty());
  wall.runUntil(at(2024, 6, 1, 12, 0, 16));
  EXPECT_EQ(asked, 3);
  EXPECT_THAT(valuesOf(wall), ElementsAre(140));
  lux.reset();
  wall.runUntil(at(2024, 6, 1, 12, 0, 28));
  EXPECT_EQ(wall.sent.size(), 1U) << "two failures";
  wall.runUntil(at(2024, 6, 1, 12, 0, 32));
  EXPECT_THAT(valuesOf(wall), ElementsAre(140, brightnessOf(40)));
  EXPECT_EQ(wall.sent.back().reason, BrightnessReason::Fallback);
}

TEST(BrightnessMixedTest, TheTenMinutesBeginAnewWithEachSlot) {
  VirtualWall wall({}, at(2024, 6, 1, 12, 1));
  wall.tick();
  BrightnessFile plan = mixedPlan({{12, 0, 80}, {12, 6, 40}});
  for (const uint8_t on : {uint8_t{0}, uint8_t{1}}) {
    plan[brightness::kControl] = on;
    write(wall, plan, kTestLength);
    EXPECT_EQ(wall.sent.size(), on);
    wall.control().SetBrightnessAdjustTable(brightness::kControl, std::array<uint8_t, 1>{on});
    EXPECT_EQ(wall.sent.size(), on) << "is switched so already";
  }
  wall.runUntil(at(2024, 6, 1, 12, 15, 30));
  EXPECT_THAT(valuesOf(wall), ElementsAre(204, 102));
  wall.runUntil(at(2024, 6, 1, 12, 16, 30));
  EXPECT_THAT(valuesOf(wall), ElementsAre(204, 102, 102));
}

TEST(BrightnessMixedTest, NoOtherModeSendsItsBrightnessAgain) {
  for (const uint8_t mode :
       {uint8_t{brightness::kProgrammable}, uint8_t{brightness::kAutomatic}, uint8_t{0}}) {
    VirtualWall wall(mixedPlan({{12, 0, 80}}), at(2024, 6, 1, 12, 30));
    wall.tick();
    EXPECT_EQ(wall.control().state().BriBroadcastEnable, kActive);
    write(wall, {mode}, brightness::kMirrorSize);
    EXPECT_EQ(wall.control().state().BriBroadcastEnable, kInactive) << int{mode};
  }
}

TEST(BrightnessMixedTest, FailuresWithAReadingBetweenAreNoReasonToFallBack) {
  VirtualWall wall(mixedPlan({{0, 0, 0, true}}), at(2024, 6, 1, 12));
  int asked = 0;
  wall.light = [&](int64_t, const SensorRecord&) {
    return ++asked % 3 == 0 ? std::optional<uint16_t>(550) : std::nullopt;
  };
  wall.runUntil(at(2024, 6, 1, 12, 5));
  EXPECT_GT(asked, 50);
  for (const SentBrightness& sent : wall.sent) EXPECT_EQ(sent.reason, BrightnessReason::Sensor) << sent.at;
}

TEST(BrightnessMixedTest, WithoutAnEnabledNodeNothingIsSentOrAwaited) {
  VirtualWall wall(mixedPlan({{12, 1, 80, false, 0x7F, 0}, {12, 2, 80, true, 0x7F, 0}}), at(2024, 6, 1, 12));
  wall.runUntil(at(2024, 6, 1, 12, 10));
  EXPECT_THAT(wall.sent, IsEmpty());
  EXPECT_EQ(wall.control().state().Index, kNoNode);
  EXPECT_EQ(wall.control().state().INT_Once, 2);
}

TEST(BrightnessMixedTest, APlanMayShrinkUnderTheNodeThatIsWaitedFor) {
  VirtualWall wall(mixedPlan({{9, 0, 90}, {12, 0, 20}, {12, 30, 40}, {13, 0, 60}}), at(2024, 6, 1, 12, 29));
  wall.runUntil(at(2024, 6, 1, 12, 29, 10));
  BrightnessFile shorter = mixedPlan({{9, 0, 10}});
  // The list in flash has shrunk, the last chunk is still missing: node 2 comes and is not there.
  wall.writeFile(0, shorter);
  wall.runUntil(at(2024, 6, 1, 12, 31));
  EXPECT_THAT(valuesOf(wall), ElementsAre(brightnessOf(20)));
  write(wall, shorter, kTestLength);
  wall.runUntil(at(2024, 6, 2, 9, 1));
  EXPECT_EQ(wall.sent.back().value, brightnessOf(10));
  EXPECT_EQ(std::count(wall.file().begin(), wall.file().end(), 0xEE), 0);
}

TEST(BrightnessWatchdogTest, BlackComesWithThe42ndCheckAfterTheLastHeartbeat) {
  VirtualWall wall(mixedPlan({}, false, brightness::kSerialBlack), at(2024, 6, 1, 12));
  wall.tick();
  wall.control().heartbeat();
  wall.control().SeiralComErrorProcess();
  for (int check = 1; check <= 41; ++check) wall.control().SeiralComErrorProcess();
  EXPECT_THAT(wall.sent, IsEmpty());
  wall.control().SeiralComErrorProcess();
  wall.control().SeiralComErrorProcess();
  EXPECT_THAT(valuesOf(wall), ElementsAre(0xFF, 0xFF));
  wall.control().heartbeat();
  wall.control().SeiralComErrorProcess();
  wall.control().SeiralComErrorProcess();
  EXPECT_THAT(valuesOf(wall), ElementsAre(0xFF, 0xFF, 0x00));
}

TEST(BrightnessWatchdogTest, ThePlanTakesOverOnceAndHandsTheWallBack) {
  VirtualWall wall(mixedPlan({{0, 0, 80}}, false, brightness::kHardware), at(2024, 6, 1, 12));
  for (int second = 0; second < 100; ++second) {
    wall.control().heartbeat();
    wall.runUntil(wall.localSeconds() + 1);
  }
  EXPECT_THAT(wall.sent, IsEmpty());
  wall.runUntil(wall.localSeconds() + 300);
  EXPECT_THAT(valuesOf(wall), ElementsAre(204));
  wall.control().heartbeat();
  wall.runUntil(wall.localSeconds() + 2);
  EXPECT_EQ(wall.control().state().MixBrightnessAdjustEnable, kInactive);
}

TEST(BrightnessWatchdogTest, AStartWithoutAUsableTimeoutCountsAsAMissingHeartbeat) {
  for (const auto& [stored, used] :
       {std::pair{0, 0}, {1, 0}, {2, 2}, {3, 3}, {0x76, 0x76}, {0x77, 0x77}, {0x78, 0}, {0xFF, 0}}) {
    VirtualWall wall(mixedPlan({{0, 0, 80}}, false, brightness::kHardware), at(2024, 6, 1, 12));
    wall.serialTimeout = static_cast<uint8_t>(stored);
    wall.tick();
    EXPECT_EQ(wall.control().state().UartDiscOvertime, used != 0 ? used : 40) << stored;
    wall.runUntil(at(2024, 6, 1, 12, 0, 1) + used * 9 / 10);  // a hundred ticks are counted as 99
    EXPECT_EQ(wall.sent.empty(), used != 0) << stored;
    wall.runUntil(at(2024, 6, 1, 12, 0, 3) + used);
    EXPECT_THAT(valuesOf(wall), ElementsAre(204)) << stored;
  }
}

}  // namespace
}  // namespace ORVE_MCUC
