// The brightness control in the daemon: what reaches cards, flash and LSD, by the board's clock.
#include <gmock/gmock.h>

#include <ctime>
#include <thread>

#include "../calc/brightness_plans.h"
#include "process/proc_poll.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "proto/store/data_common.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = peer::Bytes;
using Fault = TestBoard::Fault;

constexpr uint32_t kSpace = 0x0A000000;
constexpr uint32_t kStored = 0x00B8B000;
constexpr uint32_t kCardBrightness = 0x02000001;
constexpr const char* kTwoSensors =
    "cards_per_port = 2\nsensor = 0 0 1 550\nsensor = 1 1 2 1000\njournal = writes\n";

class PollTest : public testing::Test {
 protected:
  void SetUp() override { setClock(11, 59, 30); }

  // Local time of a day that is a Saturday.
  void setClock(int hour, int minute, int second) {
    tm local{};
    local.tm_year = 124;
    local.tm_mon = 5;
    local.tm_mday = 1;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_sec = second;
    local.tm_isdst = -1;
    daemon.board.setClock(mktime(&local));
  }
  void run(int seconds) { daemon.tick(static_cast<unsigned>(seconds) * 5); }
  void submit(const BrightnessFile& plan, std::size_t length) {
    for (std::size_t from = 0; from < length; from += 512) {
      const auto chunk = std::span(plan).subspan(from, std::min<std::size_t>(512, length - from));
      EXPECT_EQ(daemon.write(kSpace + static_cast<uint32_t>(from), {chunk.begin(), chunk.end()}).ack, 0);
    }
    daemon.workOff();
  }
  int brightness(uint8_t port = 0, uint16_t board = 1) {
    return daemon.board.card(1, port, board, kCardBrightness, 1).at(0);
  }
  // Journal lines of one kind since the last call for it.
  std::vector<std::string> lines(const std::string& kind) {
    std::vector<std::string> found;
    const auto journal = daemon.board.journal();
    for (std::size_t i = seen_; i < journal.size(); ++i)
      if (journal[i].find(kind) != std::string::npos) found.push_back(journal[i]);
    seen_ = journal.size();
    return found;
  }
  Bytes storedFile() { return daemon.board.flash(kStored, brightness::kFileSize); }

  TestDaemon daemon{kTwoSensors};

 private:
  std::size_t seen_ = 0;
};

TEST_F(PollTest, AStoredPlanRunsFromTheFirstTickAndLsdIsTold) {
  const BrightnessFile plan = mixedPlan({{12, 0, 20}, {23, 0, 80}});
  daemon.board.setFlash(kStored, {plan.begin(), plan.end()});
  EXPECT_EQ(daemon.read(kSpace, 1).data, Bytes{brightness::kMixed}) << "before the mirror is loaded";
  daemon.connect();
  daemon.tick();
  EXPECT_EQ(brightness(), 204);
  EXPECT_EQ(brightness(3, 0), 204);
  run(32);
  EXPECT_EQ(brightness(), 51);
  std::vector<std::string> told;
  for (const peer::Frame& push : daemon.pushes())
    if (push.address == kCardBrightness) told.push_back(peer::toHex(push.data));
  EXPECT_THAT(told, ElementsAre("cc", "33"));
}

TEST_F(PollTest, APlanInChunksIsStoredStartedAndReadBack) {
  daemon.tick();
  const BrightnessFile plan = mixedPlan({{6, 0, 20}, {23, 0, 80}});
  submit(plan, kTestLength);
  EXPECT_EQ(brightness(), 51);
  EXPECT_EQ(storedFile(), Bytes(plan.begin(), plan.end()));
  for (const auto& [offset, length] : {std::pair{0, 512}, {500, 12}, {500, 13}, {700, 203}}) {
    const auto at = plan.begin() + offset;
    EXPECT_EQ(daemon.read(kSpace + static_cast<uint32_t>(offset), static_cast<uint16_t>(length)).data,
              Bytes(at, at + length))
        << offset;
  }
  EXPECT_EQ(daemon.read(kSpace, 513).ack, 4);
}

TEST_F(PollTest, AModeWriteStoresSixteenPagesAndPowerMayGoAtEachOfThem) {
  BrightnessFile plan = mixedPlan({{6, 0, 20}});
  plan[4500] = 77;
  const auto scenario = [&] {
    daemon.write(kSpace, {brightness::kSerialBlack});
    daemon.workOff();
  };
  uint32_t n = 1;
  for (;; ++n) {
    daemon.board.setFlash(kStored, {plan.begin(), plan.end()});
    daemon.powerOn();
    daemon.tick();
    if (!daemon.cutPowerAt(n, scenario)) break;
    daemon.powerOn();
    Bytes stored = storedFile();
    EXPECT_TRUE(stored[0] == brightness::kMixed || stored[0] == brightness::kSerialBlack) << n;
    stored[0] = plan[0];
    EXPECT_EQ(stored, Bytes(plan.begin(), plan.end())) << n;
  }
  EXPECT_EQ(n, 17U);
  EXPECT_EQ(Addr_HardWareBrightnessAdjust::control().state().SerialCtrlScreenBlackEnable, kActive);
}

TEST_F(PollTest, TheTimetableSetsPortsAndTheirComponents) {
  BrightnessFile table = programmablePlan({{6, 0, 60}, {12, 0, 30}});
  table[brightness::kComponents] = brightness::kWithComponents;
  table[brightness::kNodePorts] = 0x0F;
  table[brightness::kNodePorts + 1] = 0x0A;
  for (uint8_t i = 0; i < 4; ++i)
    table[brightness::kNodeComponents + std::size_t{0x20} * i + 1] = static_cast<uint8_t>(0xC0 + i);
  daemon.tick();
  submit(table, 512);
  EXPECT_EQ(brightness(2), 60);
  lines("");
  run(32);
  EXPECT_THAT(lines("-write"),
              ElementsAre("card-write 1 1 65535 0x02000001 1 1e", "fpga-write 0x00100000 1 02",
                          "fpga-write 0x00300000 18 0101ffff0100020000020400c0c1c2c30f05",
                          "fpga-write 0x00100000 1 03", "card-write 1 3 65535 0x02000001 1 1e",
                          "fpga-write 0x00100000 1 06",
                          "fpga-write 0x00300000 18 0103ffff0100020000020400c0c1c2c31105",
                          "fpga-write 0x00100000 1 07"));
  EXPECT_EQ(brightness(2), 60);
  EXPECT_EQ(brightness(3), 30);
  EXPECT_EQ(daemon.board.card(1, 3, 0, 0x02000002, 4), (Bytes{0xC0, 0xC1, 0xC2, 0xC3}));
  EXPECT_THAT(storedFile(), Each(0)) << "a timetable is stored by a save alone";
  Addr_HardWareBrightnessAdjust::takeSerialTimeout(99);
  EXPECT_EQ(storedFile(), Bytes(table.begin(), table.end()));
}

TEST_F(PollTest, SensorsAreAskedThroughTheirCards) {
  BrightnessFile plan = mixedPlan({{6, 0, 0, true}});
  const uint8_t sensors[] = {3, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 2, 0, 0, 0, 0, 200, 1, 0, 2};
  std::copy(std::begin(sensors), std::end(sensors), plan.begin() + kTestSensors);
  daemon.tick(5);
  submit(plan, kTestLength);
  lines("");
  run(5);
  EXPECT_THAT(lines("card-write"), ElementsAre("card-write 2 0 0 0x06000000 11 0100000055aa010280ff81",
                                               "card-write 2 1 1 0x06000000 11 0200000055aa010280ff81"));
  run(10);
  EXPECT_EQ(brightness(), brightnessOf(77));  // 774 lux: between 550 and 1000
  daemon.board.setLux(1, 0xFFFFFFFF);
  run(15);
  EXPECT_EQ(brightness(), brightnessOf(55));
  daemon.board.setLux(0, 0xFFFFFFFF);
  run(15);
  EXPECT_EQ(brightness(), brightnessOf(40));
}

TEST_F(PollTest, TheAutomaticModeReadsEvery99TicksAndDecidesAfterSix) {
  BrightnessFile file{};
  const std::array<uint8_t, 12> header{brightness::kAutomatic, 1, 0, 0, 0, 0xE8, 0x03, 0, 0, 220, 20, 4};
  std::copy(header.begin(), header.end(), file.begin());
  file[brightness::kAutomaticSensors + 4] = 1;
  daemon.board.setFlash(kStored, {file.begin(), file.end()});
  daemon.tick(5);
  lines("");
  daemon.tick(99 * 6);
  EXPECT_EQ(lines("0x06000000").size(), 6U);
  EXPECT_EQ(brightness(), 120);
}

TEST_F(PollTest, TheHeartbeatDecidesWhetherTheScreenIsBlack) {
  const BrightnessFile plan = mixedPlan({}, false, brightness::kSerialBlack);
  daemon.tick();
  submit(plan, kTestLength);
  run(60);
  EXPECT_THAT(lines("0x02000100"), Contains("card-write 1 255 65535 0x02000100 1 ff"));
  Addr_HardWareBrightnessAdjust::heartbeat();
  run(2);
  EXPECT_EQ(lines("0x02000100").back(), "card-write 1 255 65535 0x02000100 1 00");
  EXPECT_EQ(daemon.board.card(1, 0, 0, 0x02000100, 1), Bytes{0});
}

TEST_F(PollTest, AFactoryResetEndsAGradualChange) {
  daemon.tick(10);
  submit(mixedPlan({{6, 0, 100}, {12, 0, 0}}, true), kTestLength);
  run(20);
  lines("");
  Addr_HardWareBrightnessAdjust::control().TimeToOver_Handler();
  setClock(12, 0, 1);
  Addr_HardWareBrightnessAdjust::control().TimeToOver_Handler();
  Data_Global::getInstance()->RebootRF = 3;
  Addr_HardWareBrightnessAdjust::control().MixBrightnessAdjust();
  EXPECT_THAT(lines("card-write"), ElementsAre("card-write 1 255 65535 0x02000001 1 fe"));
  Data_Global::getInstance()->RebootRF = 0;
}

TEST_F(PollTest, IntelligentBrightnessGoesToThePortsOfItsMasks) {
  lines("");
  EXPECT_EQ(daemon.write(0x02400000, {0x80, 2, 0, 0, 0, 0x05, 0, 0, 0, 0x02, 0}).ack, 0);
  EXPECT_EQ(lines("fpga-write"),
            (std::vector<std::string>{
                "fpga-write 0x00000100 1 00", "fpga-write 0x00000400 15 0100ffff0100010000020100808402",
                "fpga-write 0x00000100 1 00", "fpga-write 0x00000100 1 04",
                "fpga-write 0x00000400 15 0102ffff0100010000020100808602", "fpga-write 0x00000100 1 00",
                "fpga-write 0x00000100 1 02", "fpga-write 0x00000400 15 0101ffff0100010000020100808502",
                "fpga-write 0x00000100 1 00"}));
  EXPECT_EQ(brightness(2), 0x80);
  EXPECT_EQ(brightness(3), 0xFF);
  // More entries than bytes, too few bytes, another offset.
  EXPECT_EQ(daemon.write(0x02400000, {0x80, 0xFF, 0xFF, 0, 0, 0x08, 0, 0, 0}).ack, 0);
  EXPECT_EQ(lines("0x00000400").size(), 1U);
  for (const auto& [address, data] :
       {std::pair<uint32_t, Bytes>{0x02400000, {1, 1, 0}}, {0x02400001, Bytes(9, 0xFF)}})
    EXPECT_EQ(daemon.write(address, data).ack, 0);
  EXPECT_THAT(lines("0x00000400"), IsEmpty());
  EXPECT_THAT(daemon.read(0x02400000, 4).data, IsEmpty());
}

// Each call of each kind fails once; a minute later the wall is as it would have been.
TEST_F(PollTest, NoSingleFaultLeavesTheWallWrong) {
  const BrightnessFile plan = mixedPlan({{11, 59, 20}, {12, 0, 0, true}, {12, 1, 60}});
  for (const Fault kind : {Fault::FlashRead, Fault::CardWrite, Fault::CardRead, Fault::MessageSend}) {
    for (uint32_t n = 1;; ++n) {
      daemon.board.setFlash(kStored, {plan.begin(), plan.end()});
      setClock(11, 59, 30);
      daemon.restart();
      const bool reached = daemon.failAt(kind, n, [&] {
        run(31);
        run(28);
      });
      daemon.board.clearFaults();
      run(40);
      ASSERT_EQ(Addr_HardWareBrightnessAdjust::control().state().LastGlobalBri, brightnessOf(60)) << n;
      if (!reached || n > 40) break;
    }
  }
}

TEST_F(PollTest, PeersWriteWhileThePlanRuns) {
  const BrightnessFile plan = mixedPlan({{11, 59, 20}, {12, 0, 0, true}, {12, 1, 60}}, true);
  const BrightnessFile table = programmablePlan({{6, 0, 60}, {12, 0, 30}});
  BrightnessControl& control = Addr_HardWareBrightnessAdjust::control();
  std::atomic<bool> ends = false;
  std::thread work([&] {
    for (int i = 0; !ends; ++i) {
      const BrightnessFile& file = i % 3 == 0 ? table : plan;
      for (std::size_t from = 0; from < kTestLength; from += 512)
        control.SetBrightnessAdjustTable(
            from, std::span(file).subspan(from, std::min<std::size_t>(512, kTestLength - from)));
      control.takeSerialTimeout(static_cast<uint8_t>(i));
      control.heartbeat();
    }
  });
  std::thread message([&] {
    std::array<uint8_t, 512> mirror{};
    while (!ends) control.readMirror(0, mirror);
  });
  run(120);
  ends = true;
  work.join();
  message.join();
  submit(plan, kTestLength);
  run(2);
  EXPECT_EQ(control.state().MixBrightnessAdjustEnable, kActive);
}

}  // namespace
}  // namespace ORVE_MCUC
