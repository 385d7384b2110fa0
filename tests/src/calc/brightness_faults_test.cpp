// The brightness control with a file that cannot be read, and with writes of all kinds.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <random>
#include <thread>

#include "brightness_plans.h"
#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Reads that fail, one after the other: whatever was due is carried out when the file can be read again.
class FaultyWall : public VirtualWall {
 public:
  using VirtualWall::VirtualWall;
  int passing = -1;  // so many reads from now pass, then some fail; negative: all pass
  int failures = 1;
  int writes = 0;
  bool readFile(std::size_t offset, std::span<uint8_t> bytes) override {
    if (passing >= 0 && passing-- == 0) {
      passing = --failures > 0 ? 0 : -1;
      return false;
    }
    return VirtualWall::readFile(offset, bytes);
  }
  void writeFile(std::size_t offset, std::span<const uint8_t> bytes) override {
    ++writes;
    VirtualWall::writeFile(offset, bytes);
  }
};

TEST(BrightnessFaultTest, NoFailedReadStopsThePlan) {
  for (const auto& [n, failures] :
       {std::pair{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}, {0, 3}, {1, 3}, {2, 3}}) {
    FaultyWall wall(mixedPlan({{12, 0, 20}, {12, 1, 0, true}, {12, 2, 60}}), at(2024, 6, 1, 12));
    wall.light = [](int64_t, const SensorRecord&) { return 550; };
    wall.passing = n;
    wall.failures = failures;
    wall.runUntil(at(2024, 6, 1, 12, 1, 45));
    EXPECT_EQ(wall.sent.back().value, 140) << n;
    wall.runUntil(at(2024, 6, 1, 12, 3));
    EXPECT_EQ(wall.sent.back().value, brightnessOf(60)) << n;
  }
}

TEST(BrightnessFaultTest, AFailedReadChangesNeitherMirrorNorFile) {
  const BrightnessFile stored = mixedPlan(kThreeNodes);
  const auto mirrorOf = [](const VirtualWall& wall) {
    return const_cast<VirtualWall&>(wall).control().state().ProgrammableTimeTableArray;
  };
  for (const bool loaded : {false, true}) {
    FaultyWall wall(stored, at(2024, 6, 1, 12));
    if (loaded) wall.tick();
    const auto mirror = mirrorOf(wall);
    wall.passing = loaded ? 0 : 1;
    wall.control().takeSerialTimeout(77);
    wall.passing = 0;
    wall.failures = 1;
    wall.control().SetBrightnessAdjustTable(0, std::array{uint8_t{brightness::kProgrammable}});
    EXPECT_EQ(wall.writes, 0);
    EXPECT_EQ(wall.file(), stored);
    const auto after = mirrorOf(wall);
    EXPECT_TRUE(after == mirror || std::equal(after.begin(), after.end(), stored.begin())) << loaded;
  }
  // Nor does a part of a file, of which nobody could say what it belongs to.
  FaultyWall unread(stored, at(2024, 6, 1, 12));
  unread.passing = 0;
  unread.control().SetBrightnessAdjustTable(512, std::array<uint8_t, 8>{});
  unread.runUntil(at(2024, 6, 1, 12, 0, 10));
  EXPECT_EQ(unread.writes, 0);
  EXPECT_THAT(valuesOf(unread), testing::Each(brightnessOf(60)));
  // A mirror that was not loaded is loaded before it is stored.
  FaultyWall wall(stored, at(2024, 6, 1, 12));
  wall.control().takeSerialTimeout(77);
  EXPECT_EQ(wall.writes, 3);
  EXPECT_EQ(wall.file(), stored);
  wall.control().takeSerialTimeout(77);
  wall.control().takeSerialTimeout(0);
  EXPECT_EQ(wall.writes, 3);
}

// A wall where something comes to pass before the n-th send or in the n-th pause.
class InterruptedWall : public VirtualWall {
 public:
  using VirtualWall::VirtualWall;
  int sendsLeft = 0;
  int pausesLeft = 0;
  std::function<void()> interrupt;
  bool reset = false;
  void sendBrightness(uint8_t port, uint8_t value, BrightnessReason reason) override {
    if (--sendsLeft == 0) interrupt();
    VirtualWall::sendBrightness(port, value, reason);
  }
  void pause(int milliseconds) override {
    VirtualWall::pause(milliseconds);
    if (--pausesLeft == 0) interrupt();
  }
  bool resetRequested() override { return reset; }
};

TEST(BrightnessInterruptTest, AResetEndsAGradualChangeAfterTheStepAtHand) {
  for (const auto& [sends, pauses] : {std::pair{4, 0}, {0, 3}}) {
    InterruptedWall wall(mixedPlan({{12, 0, 0}, {12, 1, 100}}, true), at(2024, 6, 1, 12));
    wall.sendsLeft = sends;
    wall.pausesLeft = pauses;
    wall.interrupt = [&] { wall.reset = true; };
    // There are no further ticks while a reset waits.
    while (!wall.reset && wall.localSeconds() < at(2024, 6, 1, 12, 2)) wall.tick();
    EXPECT_THAT(valuesOf(wall), ElementsAre(0, 1, 2, 3)) << sends;
  }
}

TEST(BrightnessInterruptTest, APlanWhoseFirstBrightnessAStepOvertakesPrevails) {
  InterruptedWall wall(mixedPlan({{12, 0, 0}, {12, 1, 100}}, true), at(2024, 6, 1, 12));
  wall.sendsLeft = 4;
  wall.interrupt = [&] { write(wall, mixedPlan({{0, 0, 80}}, true), kTestLength); };
  wall.runUntil(at(2024, 6, 1, 12, 1, 20));
  EXPECT_THAT(valuesOf(wall), ElementsAre(0, 1, 2, 204, 3, 204));
}

// To any mode that has no plan, and to a programmable table of no nodes.
TEST(BrightnessInterruptTest, AChangeEndsWithThePlanThatItBelongsTo) {
  for (const uint8_t mode : {uint8_t{0}, uint8_t{0xFF}, uint8_t{brightness::kProgrammable}}) {
    InterruptedWall wall(mixedPlan({{12, 0, 0}, {12, 1, 100}}, true), at(2024, 6, 1, 12));
    wall.sendsLeft = 4;
    wall.interrupt = [&] { write(wall, {mode}, brightness::kMirrorSize); };
    wall.runUntil(at(2024, 6, 1, 12, 2));
    EXPECT_THAT(valuesOf(wall), ElementsAre(0, 1, 2, 3)) << int{mode};
  }
}

TEST(BrightnessWriteTest, APlanStartsWithItsLastChunkHoweverManyThereAre) {
  const BrightnessFile plan = mixedPlan({{0, 0, 80}});
  for (const std::size_t size : {200U, 400U, 512U}) {
    VirtualWall wall({}, at(2024, 6, 1, 12));
    wall.tick();
    for (std::size_t from = 0; from < kTestLength; from += size) {
      EXPECT_THAT(wall.sent, IsEmpty());
      wall.control().SetBrightnessAdjustTable(
          from, std::span(plan).subspan(from, std::min(size, kTestLength - from)));
    }
    EXPECT_THAT(valuesOf(wall), ElementsAre(204)) << size;
    EXPECT_EQ(wall.file(), plan);
  }
}

TEST(BrightnessWriteTest, ChunksAreNotStoredBeyondTheFile) {
  VirtualWall wall({}, at(2024, 6, 1, 12));
  wall.tick();
  const BrightnessFile plan = mixedPlan({{0, 0, 80}});
  write(wall, plan, kTestLength);
  const BrightnessFile before = wall.file();
  for (const std::size_t beyond : {std::size_t{5000}, std::size_t{5120}, std::size_t{0xFFFF}})
    wall.control().SetBrightnessAdjustTable(beyond, std::vector<uint8_t>(200, 0xEE));
  EXPECT_EQ(wall.file(), before);
  // Neither does a file that is too long start.
  BrightnessFile tooLong = plan;
  putLe16(std::span<uint8_t>(tooLong), brightness::kFileLength, 5200);
  wall.control().SetBrightnessAdjustTable(0, std::span(tooLong).first(512));
  wall.control().SetBrightnessAdjustTable(5100, std::vector<uint8_t>(100));
  EXPECT_EQ(wall.sent.size(), 1U);
  // Any other mode stores what is written and stops everything.
  wall.control().SetBrightnessAdjustTable(0, std::array<uint8_t, 1>{0});
  const BrightnessSchedule state = wall.control().state();
  for (const enum_Active flag :
       {state.MixBrightnessAdjustEnable, state.BriBroadcastEnable, state.MixBriAdjustControl,
        state.LastMixBriAdjustControl, state.MixBriAdjustGlobalControl, state.GradualAdjustControl})
    EXPECT_EQ(flag, kInactive);
  EXPECT_EQ(wall.file()[0], 0);
  EXPECT_EQ(wall.file()[700], before[700]);
}

TEST(BrightnessWriteTest, ATableThatIsWrittenBeforeTheFirstTickIsNotLost) {
  VirtualWall wall(mixedPlan({{0, 0, 80}}), at(2024, 6, 1, 12));
  const BrightnessFile table = programmablePlan(kThreeNodes);
  wall.control().SetBrightnessAdjustTable(0, std::span(table).first(512));
  wall.runUntil(at(2024, 6, 1, 12, 0, 10));
  EXPECT_EQ(wall.control().state().ProgrammableAdjustEnable, kActive);
  EXPECT_THAT(valuesOf(wall), testing::Each(60));
}

TEST(BrightnessWriteTest, AChunkIsOfOnePieceForWhoeverReads) {
  VirtualWall wall({}, at(2024, 6, 1, 12));
  wall.tick();
  BrightnessControl& control = wall.control();
  std::atomic<bool> done = false;
  std::atomic<int> reads = 0;
  std::thread peer([&] {
    for (int i = 0; i < 300000 || reads < 300000; ++i)  // no mode of these has a plan
      control.SetBrightnessAdjustTable(
          0, std::vector<uint8_t>(brightness::kMirrorSize, i % 2 == 0 ? uint8_t{0xFF} : uint8_t{0}));
    done = true;
  });
  std::vector<uint8_t> bytes(brightness::kMirrorSize);
  int torn = 0;
  for (; !done; ++reads) {
    const bool read = control.readMirror(0, bytes);
    torn += !read || bytes != std::vector<uint8_t>(bytes.size(), bytes[0]) ? 1 : 0;
  }
  peer.join();
  EXPECT_EQ(torn, 0);
}

// Files and writes of random bytes, in every mode: it goes on, and sends what a card can hold.
TEST(BrightnessWriteTest, HostileBytesDoNotStopIt) {
  std::mt19937 random(7);
  const auto byte = [&] { return static_cast<uint8_t>(random() % 4 == 0 ? 0xFF : random()); };
  constexpr uint8_t kModes[] = {0x5B, 0x7D, 0x9A, 0x9B, 0x9C, 0x00};
  for (int round = 0; round < 300; ++round) {
    BrightnessFile file;
    std::generate(file.begin(), file.end(), byte);
    file[0] = kModes[round % 6];
    VirtualWall wall(file, at(2024, 2, 29, 23, 59));
    wall.light = [&](int64_t, const SensorRecord&) { return static_cast<uint16_t>(random()); };
    wall.runUntil(wall.localSeconds() + 20);
    for (int i = 0; i < 20; ++i) {
      std::vector<uint8_t> data(1 + random() % 512);
      std::generate(data.begin(), data.end(), byte);
      if (random() % 2 == 0) data[0] = kModes[random() % 6];
      wall.control().SetBrightnessAdjustTable(random() % 3 == 0 ? 0 : random() % 0x10000, data);
      wall.runUntil(wall.localSeconds() + 10);
      if (random() % 4 == 0) wall.control().heartbeat();
    }
  }
}

}  // namespace
}  // namespace ORVE_MCUC
