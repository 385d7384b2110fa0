// A board that fails on purpose: faults by count and by address, power cuts, and time in a test's hands.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <thread>

#include "board_fixture.h"
#include "platform/driver.h"
#include "platform/sysconf.h"

namespace {

using testing::ElementsAre;
using namespace std::chrono_literals;

using Bytes = std::vector<unsigned char>;
using Fault = TestBoard::Fault;

int writeFlash(uint32_t address, const Bytes& data) {
  return WriteDataToFlashx(address, static_cast<uint32_t>(data.size()), data.data());
}

TEST_F(BoardTest, OnlyTheNthCallOfAKindFails) {
  start();
  board_shell("cp /usr/orve/etc/sysconf/kespara_factory /usr/orve/etc/sysconf/kespara_factory_tmp");
  unsigned char byte = 1;
  char text[50] = {};
  const std::pair<Fault, std::function<int()>> calls[] = {
      {Fault::FpgaWrite, [&] { return WriteFPGABlock(1, 0x200, 1, &byte); }},
      {Fault::FpgaRead, [&] { return ReadFPGABlock(1, 0x200, 1, &byte); }},
      {Fault::FlashWrite, [&] { return WriteDataToFlashx(0x200, 1, &byte); }},
      {Fault::FlashRead, [&] { return ReadDataFromFlashx(0x200, 1, &byte); }},
      {Fault::FactoryWrite, [&] { return WriteDataToFactoryTmpFlashx(0x200, 1, &byte); }},
      {Fault::EnvSet, [&] { return sysconf_setenv("key", "value"); }},
      {Fault::TimeText, [&] { return sysconf_get_date_hms(text); }},
  };
  for (const auto& [kind, call] : calls) {
    const auto calling = [&once = call](int times) {
      std::string failed;
      for (int i = 0; i < times; ++i) failed += once() == 0 ? '.' : 'F';
      return failed;
    };
    failCall(kind, 3);
    EXPECT_EQ(calling(6), "..F...") << static_cast<int>(kind);
    if (kind > Fault::FactoryWrite) continue;
    fault(kind, {2, 1, 0x201, 0x300});
    EXPECT_EQ(calling(3), "...") << "these calls do not touch the range";
    EXPECT_EQ(simboard::faultLeft(kind).after, 1U);
    fault(kind, {2, 1, 0x100, 0x200});
    EXPECT_EQ(calling(6), ".FF...") << static_cast<int>(kind);
    fault(kind, {kEveryCall});
    EXPECT_EQ(calling(3), "FFF");
    clearFaults();
  }
}

TEST_F(BoardTest, ARangeCountsWhatTouchesItByASingleByte) {
  start();
  const Bytes four(4);
  const auto fails = [&](uint32_t address) { return writeFlash(address, four) != 0; };
  fault(Fault::FlashWrite, {kEveryCall, 0, 0x1000, 0x1001});
  EXPECT_THAT((std::array{fails(0xFFC), fails(0xFFD), fails(0x1001), fails(0x1002)}),
              ElementsAre(false, true, true, false));
  fault(Fault::FpgaWrite, {kEveryCall, 0, 0, 1});
  EXPECT_EQ(WriteFPGABlock(1, 2, 4, four.data()), 0) << "the end of the range is its last address";
}

TEST_F(BoardTest, APowerCutLeavesOfItsWriteWhatWasDoneAndNothingHappensAfterIt) {
  const std::pair<PowerCut, std::size_t> cuts[] = {{{2, PowerCut::Nothing}, 0},
                                                   {{2, PowerCut::Sectors, 1}, 512},
                                                   {{2, PowerCut::Sectors, 9}, 1200},
                                                   {{2, PowerCut::All}, 1200}};
  for (const auto& [cut, done] : cuts) {
    start();
    setFpga(0x200, {9});
    writeFlash(0x4000, Bytes(1200));
    bool after = false;
    EXPECT_TRUE(cutPowerDuring(cut, [&] {
      EXPECT_EQ(writeFlash(0x3000, {7}), 0);
      writeFlash(0x4000, Bytes(1200, 0xEE));
      after = true;
    }));
    EXPECT_FALSE(after);
    unsigned char byte = 1;
    EXPECT_NE(writeFlash(0x3000, {8}), 0);
    EXPECT_NE(WriteFPGABlock(1, 0x200, 1, &byte), 0);
    EXPECT_NE(ReadFPGABlock(1, 0x200, 1, &byte), 0);
    EXPECT_NE(sysconf_setenv("key", "value"), 0);
    EXPECT_NE(board_shell("mkdir -p /log/x"), 0);
    EXPECT_NE(board_clock_set(0), 0);
    powerOn();
    Bytes expected(1200);
    std::fill_n(expected.begin(), done, static_cast<unsigned char>(0xEE));
    EXPECT_EQ(flash(0x4000, 1200), expected);
    EXPECT_EQ(flash(0x3000, 1), Bytes{7});
    EXPECT_EQ(fpga(0x200, 1), Bytes{0}) << "switched on anew";
    EXPECT_EQ(writeFlash(0x3000, {7}), 0);
  }
}

TEST_F(BoardTest, NoThreadWritesAnyMoreOnceThePowerIsGone) {
  start();
  cutPower({60, PowerCut::All});
  std::vector<std::thread> writers;
  for (uint32_t i = 0; i < 4; ++i) {
    writers.emplace_back([i] {
      for (uint32_t k = 0; k < 100; ++k) writeFlash(0x100 * i + k, {1});
    });
  }
  for (auto& writer : writers) writer.join();
  const Bytes written = flash(0, 0x400);
  EXPECT_EQ(std::count(written.begin(), written.end(), 1), 60);
}

// The loop that every save can be put into.
TEST_F(BoardTest, AScenarioIsRunWithThePowerGoingAtEveryWriteOfIts) {
  const auto scenario = [] {
    for (uint32_t i = 0; i < 5; ++i) writeFlash(0x100 * i, {1});
  };
  const auto wipe = [this] {
    for (uint32_t i = 0; i < 5; ++i) setFlash(0x100 * i, {0});
  };
  uint32_t n = 1;
  start();
  for (; cutPowerDuring({n, PowerCut::All}, scenario); ++n) {
    powerOn();
    Bytes written;
    for (uint32_t i = 0; i < 5; ++i) written.push_back(flash(0x100 * i, 1)[0]);
    EXPECT_EQ(std::count(written.begin(), written.end(), 1), n);
    wipe();
  }
  EXPECT_EQ(n, 6U);
  wipe();
  for (n = 1; failCallDuring(Fault::FlashWrite, n, scenario); ++n) {
    EXPECT_EQ(flash(0x100 * (n - 1), 1), Bytes{0});
    wipe();
  }
  EXPECT_EQ(n, 6U);
}

TEST_F(BoardTest, ThePowerCutEndsTheProcessAtOnceAndTheNextStartSwitchesTheBoardOn) {
  start();
  setFpga(0x200, {9});
  simboard::onOutage({});
  EXPECT_EXIT(
      {
        cutPower({1, PowerCut::All});
        writeFlash(0x100, {5});
      },
      testing::ExitedWithCode(75), "^$");
  startAgain();
  EXPECT_EQ(fpga(0x200, 1), Bytes{0});
  EXPECT_EQ(flash(0x100, 1), Bytes{5});
  EXPECT_EQ(writeFlash(0x100, {6}), 0) << "the cut was counted down";
}

TEST_F(BoardTest, ARebootGoesOnInTheSameJournalAndAStartBeginsAnother) {
  start("fpga_autoload = no\n");
  std::ofstream(file("etc/init.d/flag_fpgaload")).flush();
  writeFlash(0x100, {5});
  board_shell("reboot -f");
  EXPECT_FALSE(hasPower());
  powerOn();
  EXPECT_FALSE(std::filesystem::exists(file("etc/init.d/flag_fpgaload"))) << "its FPGA is not loaded";
  EXPECT_THAT(journal(), ElementsAre("flash-write 0x00000100 1 05", "shell reboot -f", "reboot"));
  startAgain();
  EXPECT_TRUE(journal().empty());
}

TEST_F(BoardTest, DaysPassInNoTimeWhereATestHasTime) {
  takeTime();
  start();
  setClock(1'000'000);
  for (int i = 0; i < 3 * 24; ++i) board_pause(std::chrono::microseconds(1h).count());
  EXPECT_EQ(elapsed(), 72h);
  EXPECT_EQ(clock(), 1'000'000 + 3 * 86400);
  EXPECT_EQ(board_clock_set(5), 0);
  advance(90min);
  EXPECT_EQ(clock(), 5 + 5400);
  EXPECT_TRUE(text("hw/journal.log").starts_with("259200.0")) << text("hw/journal.log");
}

TEST_F(BoardTest, ALongPauseHoldsItsThreadUntilTimeIsMovedSoFar) {
  takeTime(200ms);
  start();
  std::atomic<int> ticks{0};
  std::thread ticker([&] {
    for (; ticks < 3; ++ticks) {
      board_pause(5000);  // counted
      board_pause(200'000);
    }
  });
  for (int n = 0; n < 3; ++n) {
    ASSERT_TRUE(awaitHeld(1));
    EXPECT_EQ(ticks, n);
    advance(199ms);
    ASSERT_TRUE(awaitHeld(1));
    EXPECT_EQ(ticks, n) << "not yet";
    advance(1ms);
  }
  ticker.join();
  EXPECT_EQ(elapsed(), 615ms);
}

TEST_F(BoardTest, CardsAreReadAndWrittenPastTheDaemon) {
  start("copper_ports = 0\ncards_per_port = 1\n");
  setCard(1, 0, 0, 0x02000001, {0x55});
  EXPECT_EQ(card(1, 0, 0, 0x02000001, 1), Bytes{0x55});
  EXPECT_EQ(card(1, 0, 1, 0x02000001, 1), Bytes{});
  EXPECT_TRUE(journal().empty());
}

TEST_F(BoardTest, AFileInThePlaceOfTheLogDirectoryDoesNotStopTheBoard) {
  std::ofstream(file("log")) << "not a directory";
  start();
  EXPECT_EQ(writeFlash(0x100, {5}), 0);
  EXPECT_NE(board_shell("mkdir -p /log"), 0);
  EXPECT_EQ(text("log"), "not a directory");
}

// Standard error in the place of this process's own, for as long as the record lives.
class StandardError {
 public:
  explicit StandardError(int file) : before_(dup(STDERR_FILENO)) { dup2(file, STDERR_FILENO); }
  ~StandardError() {
    dup2(before_, STDERR_FILENO);
    close(before_);
  }

 private:
  int before_;
};

TEST_F(BoardTest, NobodyHasToReadStandardErrorAndAKindOfLineComesOnceASecond) {
  takeTime();
  start();
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  ASSERT_EQ(fcntl(ends[1], F_SETPIPE_SZ, 4096), 4096);
  {
    const StandardError unread(ends[1]);
    for (int i = 0; i < 200; ++i, advance(1s)) board_shell("nonsense that nobody reads");
    std::array<char, 8192> read{};
    EXPECT_GT(::read(ends[0], read.data(), read.size()), 4000) << "it was full";
    close(ends[0]);
    for (int i = 0; i < 3; ++i, advance(1s)) board_shell("a reader that left");
  }
  close(ends[1]);
  testing::internal::CaptureStderr();
  for (int i = 0; i < 40; ++i, advance(100ms)) board_shell("nonsense");
  const std::string line = "simulated board: unknown command: nonsense";
  const std::string more = line + " (9 more since the last line)\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), line + "\n" + more + more + more);
}

}  // namespace
