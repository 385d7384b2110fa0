// The report thread: its registers at start, and the table test while it is asked for.
#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include "../allocations.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "stub/fpgareportthread.h"
#include "testdaemon.h"

namespace {

using namespace ORVE_MCUC;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
using Bytes = peer::Bytes;

constexpr auto kPeriod = 1ms;

class ReportThreadTest : public testing::Test {
 protected:
  ReportThreadTest() { daemon.board.clearFaults(); }
  // Journal lines of writes to an address that begins so, from a line on.
  std::vector<std::string> writesTo(const std::string& address, std::size_t from = 0) const {
    std::vector<std::string> found;
    const auto lines = daemon.board.journal();
    for (std::size_t i = from; i < lines.size(); ++i)
      if (lines[i].starts_with("fpga-write " + address)) found.push_back(lines[i]);
    return found;
  }
  // Whether a thread, which may have to begin, comes to wait for something.
  static bool fallsAsleep(const std::atomic<pid_t>& thread) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (std::chrono::steady_clock::now() < end) {
      std::ifstream state("/proc/self/task/" + std::to_string(thread) + "/stat");
      std::string line;
      if (std::getline(state, line) && line.find(") S ") != line.npos) return true;
      std::this_thread::sleep_for(1ms);
    }
    return false;
  }

  TestDaemon daemon;
  FpgaReportThread report;
};

TEST_F(ReportThreadTest, TheParameterBytesThenTheEnableByteWhateverFails) {
  const std::size_t before = daemon.board.journal().size();
  report.FPGAReport_init();
  EXPECT_THAT(writesTo("0x0010007", before),
              ElementsAre("fpga-write 0x00100071 4 04009001", "fpga-write 0x00100070 1 00"));
  setTraceLevel(0);
  daemon.board.failNext(TestBoard::Fault::FpgaWrite, 3);
  daemon.board.setFpga(0x100070, {9});
  report.FPGAReport_init();
  EXPECT_EQ(daemon.board.fpga(0x100070, 1), Bytes{0});
  EXPECT_THAT(daemon.trace("reprot"), ElementsAre("Error === Write reprot para Reg failed! ret = -1"));
}

TEST_F(ReportThreadTest, ARegisterThatRunsOutOfMemoryIsGivenUpAndTheNextIsProgrammed) {
  const Bytes other{9, 9, 9, 9, 9};
  setTraceLevel(0);
  bool more = true;
  for (std::size_t n = 1; more; ++n) {
    daemon.board.setFpga(0x100070, other);
    more = failAllocation(n, [this] { report.FPGAReport_init(); });
    const Bytes now = daemon.board.fpga(0x100070, 5);
    const auto lost = static_cast<std::size_t>((now[0] == 9) + (now[1] == 9));
    EXPECT_LE(lost, more ? 1U : 0U) << n;
    EXPECT_GE(daemon.trace("FPGAReport_init ===out of memory").size(), lost) << n;
    if (!more) {
      EXPECT_GT(n, 2U) << "nothing was tried";
    }
  }
}

TEST_F(ReportThreadTest, ATestThatRunsOutOfMemoryIsGivenUpAndTheNextIsWhole) {
  const Bytes last(1024, 0x55);
  setTraceLevel(0);
  const std::size_t before = allocations();
  report.FPGAReport_init();
  const std::size_t start = allocations() - before;
  testfpgareadwrite();
  const std::size_t end = allocations() - before;
  daemon.board.takeTime(kPeriod);
  Data_Global::getInstance()->RWFPGATestflag = 1;
  for (std::size_t n = start + 1; n <= end; ++n) {
    FpgaReportThread thread;
    auto body = std::async(std::launch::async, [&] { failAllocation(n, [&] { thread.ActiveReport(); }); });
    EXPECT_TRUE(daemon.board.awaitHeld(1));  // behind the first test
    daemon.board.setFpga(0x600000, Bytes(1024));
    daemon.board.advance(kPeriod);
    EXPECT_TRUE(daemon.board.awaitHeld(1));
    thread.Release();
    daemon.board.advance(kPeriod);
    ASSERT_NO_THROW(body.get()) << n;
    EXPECT_EQ(daemon.board.fpga(0x600000, 1024), last) << n;
    EXPECT_THAT(daemon.trace("ActiveReport ===out of memory"), SizeIs(1)) << n;
  }
  EXPECT_GT(end, start + 10) << "nothing was tried";
}

TEST_F(ReportThreadTest, ATestWritesEachBlockWithBothPatternsAndReadsItBack) {
  const std::size_t before = daemon.board.journal().size();
  setTraceLevel(3);
  testfpgareadwrite();
  std::vector<std::string> expected;
  for (const auto& [address, largest] : {std::pair{"0x00600000", 1024}, {"0x00500000", 256}}) {
    for (int size = 16; size <= largest; size *= 2) {
      for (const char* pattern : {"aa", "55"}) {
        std::string line = "fpga-write " + std::string(address) + " " + std::to_string(size) + " ";
        for (int i = 0; i < std::min(size, 64); ++i) line += pattern;
        expected.push_back(line + (size > 64 ? "+" + std::to_string(size - 64) : ""));
      }
    }
  }
  auto written = writesTo("0x00600000", before);
  const auto numbers = writesTo("0x00500000", before);
  written.insert(written.end(), numbers.begin(), numbers.end());
  EXPECT_THAT(written, ElementsAreArray(expected));
  EXPECT_THAT(daemon.trace("Data error"), IsEmpty());
}

TEST_F(ReportThreadTest, WhatFailsOrDiffersIsLogged) {
  setTraceLevel(3);
  daemon.board.failNext(TestBoard::Fault::FpgaWrite, 3);
  testfpgareadwrite();
  EXPECT_THAT(
      daemon.trace("WriteToPosNetPort"),
      ElementsAre("Error === WriteToPosNetPort ===Write FPGA Position 16 Word Info failed! ret = -1"));
  daemon.board.fault(TestBoard::Fault::FpgaRead, {.calls = 3, .first = 0x500000, .last = 0x5FFFFF});
  testfpgareadwrite();
  EXPECT_THAT(daemon.trace("=== ReadFrom"),
              ElementsAre("Error === ReadFromNumberFunCardPort ===Read FPGA NumberFunCardPort 16Word Info "
                          "failed! ret = -1"));
  // Between writing a block and reading it back, somebody else changes a byte of it.
  daemon.board.takeTime(100us);
  std::thread test(&testfpgareadwrite);
  for (int block = 0; block < 24; ++block) {
    ASSERT_TRUE(daemon.board.awaitHeld(1));
    if (block == 0) daemon.board.setFpga(0x600005, {0x42});
    daemon.board.advance(100us);
  }
  test.join();
  EXPECT_THAT(
      daemon.trace("Data error"),
      ElementsAre("Info Read_Write FPGA 0x03000000 16 Word , Data error  reg = 5 sendData 170 recvData 66"));
}

TEST_F(ReportThreadTest, TheThreadTestsWhileItIsAskedToAndSleepsOtherwise) {
  constexpr unsigned kAskedFor = 100;
  setTraceLevel(3);
  auto& flag = Data_Global::getInstance()->RWFPGATestflag;
  std::atomic<pid_t> thread{0};
  std::thread body([&] {
    thread = gettid();
    report.ActiveReport();
  });
  const auto tests = [this] { return writesTo("0x00500000 256 5555").size(); };
  for (const uint8_t other : {uint8_t{2}, uint8_t{0}}) {
    flag = other;
    EXPECT_TRUE(fallsAsleep(thread));
    EXPECT_EQ(tests(), 0U);
  }
  daemon.board.takeTime(kPeriod);  // from now on it is held behind each test
  flag = 1;
  EXPECT_TRUE(daemon.board.awaitHeld(1));
  for (unsigned test = 1; test < kAskedFor; ++test) {
    daemon.board.advance(kPeriod);
    EXPECT_TRUE(daemon.board.awaitHeld(1));
  }
  EXPECT_THAT(daemon.trace("Read_Write FPGA test : "), ElementsAre("Info Read_Write FPGA test : 100"));
  flag = 0;
  daemon.board.takeTime();
  daemon.board.advance(1h);
  EXPECT_TRUE(fallsAsleep(thread));
  EXPECT_EQ(tests(), kAskedFor);
  report.Release();
  body.join();
  EXPECT_THAT(daemon.trace("exit."), ElementsAre("Info FpgaThread  exit.", "Info ActiveReport thread exit."));
}

TEST_F(ReportThreadTest, ReleasedBeforeItBeginsItOnlyProgramsTheRegisters) {
  const std::size_t before = daemon.board.journal().size();
  Data_Global::getInstance()->RWFPGATestflag = 1;
  report.Release();
  report.ActiveReport();
  EXPECT_THAT(writesTo("0x", before), SizeIs(2));
}

}  // namespace
