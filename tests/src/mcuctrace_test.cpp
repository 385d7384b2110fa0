#include "mcuctrace.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "allocations.h"
#include "mcuctrace_file.h"
#include "platform/board.h"
#include "platform/lineecho.h"

namespace ORVE_MCUC {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr std::size_t kHeader = 32;
constexpr std::size_t kLimit = 0x1400000;

// A text as a recorder with the usual buffer makes it.
template <class... Values>
std::string recorded(const Values&... values) {
  std::array<char, 1024> buffer;
  CTrace::CLogRecorder recorder(buffer.data(), buffer.size());
  (recorder << ... << values);
  return static_cast<char*>(recorder);
}

TEST(Recorder, RendersEveryTypeInItsDecimalForm) {
  EXPECT_EQ(recorded(-7, ' ', 7U, short{-3}, static_cast<unsigned char>(200)), "-7327-3200");
  EXPECT_EQ(recorded(LONG_MIN, ULONG_MAX), std::to_string(LONG_MIN) + std::to_string(ULONG_MAX));
  EXPECT_EQ(recorded(int64_t{INT64_MIN}, uint64_t{UINT64_MAX}), "-922337203685477580818446744073709551615");
  EXPECT_EQ(recorded(0.5F, " ", -1234567.891), "0.500000 -1234567.891000");
  EXPECT_EQ(recorded("a", std::string("b"), static_cast<const char*>(nullptr)), "ab");
  EXPECT_EQ(recorded(reinterpret_cast<void*>(0xAB0U)), "0xab0");
  EXPECT_THAT(recorded(std::numeric_limits<double>::max()), SizeIs(316));
}

TEST(Recorder, TheHexFlagHoldsForTheNextIntegerAndPassesOverEverythingElse) {
  EXPECT_EQ(recorded(CTrace::hex, 171, " ", 171), "ab 171");
  EXPECT_EQ(recorded(CTrace::hex, -1, CTrace::hex, static_cast<signed char>(-1)), "ffffffffffffffff");
  EXPECT_EQ(recorded(CTrace::hex, 0x1D7U, CTrace::hex, 0x1D7UL, CTrace::hex, 0L), "0x000001d70x1d70x0");
  EXPECT_EQ(recorded(CTrace::hex, "key ", 0.25, " ", 16, 16), "key 0.250000 1016");
  EXPECT_EQ(recorded(CTrace::hex, CTrace::decimal, 16), "16");
}

TEST(Recorder, NeverFillsTheLast64BytesAndAlwaysEndsTheText) {
  EXPECT_EQ(recorded(std::string(959, 'x'), 123, "more", 4), std::string(959, 'x') + "1");
  for (const std::size_t size : {0U, 1U, 63U, 64U, 65U, 66U}) {
    std::string buffer(80, '#');
    CTrace::CLogRecorder recorder(buffer.data(), size);
    recorder << "abc" << 123;
    EXPECT_EQ(recorder.length(), size > 64 ? size - 64 : 0);
    EXPECT_EQ(buffer.substr(recorder.length() + (size > 0 ? 1 : 0)).find_first_not_of('#'),
              std::string::npos);
  }
}

class TraceTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static bool started = false;
    if (std::exchange(started, true)) return;
    std::string directory = testing::TempDir() + "traceXXXXXX";
    setenv("PARLEND_BOARD", mkdtemp(directory.data()), 1);
    setenv("TZ", "UTC0", 1);
    std::string name = "base_test";
    std::array<char*, 2> arguments{name.data(), nullptr};
    board_start(1, arguments.data());
  }

  void SetUp() override {
    setTraceLevel(3);
    for (const auto& file : files()) fs::remove(file);
    board_clock_set(kNoon);
  }
  void TearDown() override { setTraceLevel(4); }

  static fs::path directory() {
    std::array<char, 4096> path{};
    EXPECT_EQ(board_path("/log", path.data(), path.size()), 0);
    return path.data();
  }
  static std::vector<fs::path> files() {
    std::vector<fs::path> found;
    if (!fs::exists(directory())) return found;
    for (const auto& entry : fs::directory_iterator(directory())) found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
  }
  // The file of that date, such as "01022024", and counter.
  static fs::path file(const std::string& date, int count) {
    return directory() /
           ("base_test_info_" + date + "_" + std::to_string(count) + "." + std::to_string(getpid()) + ".log");
  }
  static std::string content(const fs::path& path) {
    std::error_code missing;
    const auto size = static_cast<std::size_t>(fs::file_size(path, missing));
    std::string all(missing ? 0 : size, '\0');
    std::ifstream(path, std::ios::binary).read(all.data(), static_cast<std::streamsize>(all.size()));
    return all;
  }
  static std::string header(std::size_t end) {
    const std::string number = std::to_string(end);
    return number + std::string(31 - number.size(), ' ') + '\n';
  }
  static void setHeader(const fs::path& path, const std::string& text) {
    std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << text;
  }
  // The lines up to the end that the header tells.
  static std::vector<std::string> lines(const fs::path& path) {
    const std::string all = content(path);
    std::istringstream data(all.substr(kHeader, std::stoul(all) - kHeader));
    std::vector<std::string> found;
    for (std::string line; std::getline(data, line);) found.push_back(line);
    return found;
  }

  static constexpr time_t kNoon = 1704196830;  // 2 January 2024, 12:00:30
  static constexpr time_t kDay = 86400;
  // The log of the process keeps its file over all tests; on a day of its own no other log gets the same.
  static constexpr time_t kDayOfProcessLog = kNoon + 100 * kDay;
};

TEST_F(TraceTest, ALineHasItsStampItsLevelAndItsTextAndMovesTheHeader) {
  CTrace trace("Log");
  const fs::path path = file("01022024", 0);
  EXPECT_EQ(content(path), header(kHeader));
  trace.trace_string(kWarning, "first");
  const std::string all = content(path);
  EXPECT_THAT(all.substr(kHeader), MatchesRegex("\\[01/02/2024 12:00:3[0-9]\\.[0-9][0-9][0-9] pid=" +
                                                std::to_string(getpid()) + " uuid=0x0\\] Warning:first\n"));
  EXPECT_EQ(all.substr(0, kHeader), header(all.size()));
}

TEST_F(TraceTest, ALineIsCutAt1024Bytes) {
  CTrace trace("Log");
  trace.trace_string(kError, std::string(5000, 'x').c_str());
  trace.trace_string(kError, nullptr);
  EXPECT_EQ(content(file("01022024", 0)).size(), kHeader + 1024);
}

TEST_F(TraceTest, TheProcessLevelSaysWhichLinesPassAndTheOthersEvaluateNothing) {
  board_clock_set(kDayOfProcessLog);
  const std::vector<std::string> passing{"01", "0123", "012", "0123", ""};
  for (int processLevel = 0; processLevel < 5; ++processLevel) {
    setTraceLevel(processLevel);
    std::string evaluated;
    const auto value = [&](int level) {
      evaluated += std::to_string(level);
      return level;
    };
    for (int level = -1; level <= 4; ++level) PARLEND_TRACE(level) << value(level);
    EXPECT_EQ(evaluated, passing[static_cast<std::size_t>(processLevel)]) << processLevel;
  }
}

TEST_F(TraceTest, AComposedLineNamesItsPlaceAndStandsInAnIfWithoutBraces) {
  board_clock_set(kDayOfProcessLog);
  CTrace::instance();
  const int before = __LINE__;
  if (before < 0)
    PARLEND_TRACE(kInfo) << "not this one";
  else
    PARLEND_TRACE(kInfo) << "value = " << CTrace::hex << 0x12U << std::string(1000, 'x');
  const std::string place =
      "tests/src/mcuctrace_test : " + std::to_string(before + 4) + " value = 0x00000012";
  const std::string expected = "] Info:" + place + std::string(960 - place.size(), 'x');
  // An earlier test may have begun this file, and the set-up removed its name.
  bool found = false;
  for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    const std::string target = fs::read_symlink(descriptor.path(), gone).string();
    if (target.find("base_test_info_") == std::string::npos) continue;
    found = found || content(descriptor.path()).find(expected + '\n') != std::string::npos;
  }
  EXPECT_TRUE(found);
}

TEST_F(TraceTest, ANewDayBeginsANewFileWhetherTheClockGoesForwardsOrBack) {
  CTrace trace("Log");
  trace.trace_string(kInfo, "first");
  for (const auto& [day, date] : {std::pair{1, "01032024"}, {-3, "12302023"}}) {
    board_clock_set(kNoon + day * kDay);
    trace.trace_string(kInfo, "turns the page");
    EXPECT_EQ(content(file(date, 0)), header(kHeader));
    trace.trace_string(kInfo, "after");
    EXPECT_THAT(lines(file(date, 0)), ElementsAre(EndsWith("Info:after")));
  }
  EXPECT_THAT(lines(file("01022024", 0)), ElementsAre(EndsWith("first"), EndsWith("turns the page")));
}

TEST_F(TraceTest, AFullFileIsCutAtItsEndAndTenFilesADayFollowOneAnother) {
  CTrace trace("Log");
  for (int count = 0; count < 10; ++count) {
    const fs::path path = file("01022024", count);
    setHeader(path, header(kLimit));
    fs::resize_file(path, kLimit + 5000);
    trace.trace_string(kInfo, "last of its file");
    EXPECT_EQ(fs::file_size(path), std::stoul(content(path)));
    EXPECT_GT(fs::file_size(path), kLimit);
    EXPECT_LT(fs::file_size(path), kLimit + 1000);
    trace.trace_string(kInfo, "first of the next");
    EXPECT_THAT(lines(file("01022024", (count + 1) % 10)), ElementsAre(EndsWith("first of the next")));
    fs::resize_file(path, count == 0 ? fs::file_size(path) : kHeader);
  }
  EXPECT_EQ(content(file("01022024", 0)).size(), std::stoul(content(file("01022024", 0))));
  EXPECT_THAT(files(), SizeIs(10));
}

TEST_F(TraceTest, AFileThatIsEmptiedOrSpoiltWhileItIsWrittenBeginsAnewAndADeletedOneIsHarmless) {
  CTrace trace("Log");
  const fs::path path = file("01022024", 0);
  for (int i = 0; i < 2; ++i) {
    trace.trace_string(kInfo, "lost");
    fs::resize_file(path, 0);
    trace.trace_string(kInfo, "kept");
    EXPECT_THAT(lines(path), ElementsAre(EndsWith("Info:kept")));
  }
  for (const char* nonsense : {"nonsense", "-1", "5 ", "99999999999999999999999999"}) {
    setHeader(path, std::string(nonsense) + std::string(31 - std::string(nonsense).size(), ' '));
    trace.trace_string(kInfo, nonsense);
    EXPECT_THAT(lines(path), ElementsAre(EndsWith(nonsense)));
  }
  fs::remove(path);
  trace.trace_string(kInfo, "nowhere");
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(TraceTest, EmptyingTheFileAgainAndAgainNeverEndsTheWriter) {
  struct sigaction before {};
  sigaction(SIGBUS, nullptr, &before);
  CTrace trace("Log");
  const fs::path path = file("01022024", 0);
  std::atomic<bool> done{false};
  std::thread vandal([&] {
    while (!done) fs::resize_file(path, 0);
  });
  for (int i = 0; i < 3000; ++i) trace.trace_string(kInfo, "line");
  done = true;
  vandal.join();
  trace.trace_string(kInfo, "after");
  EXPECT_THAT(lines(path).back(), EndsWith("Info:after"));
  struct sigaction handling {};
  sigaction(SIGBUS, nullptr, &handling);
  EXPECT_EQ(handling.sa_handler, before.sa_handler);
}

TEST_F(TraceTest, WithoutMemoryForANewFileLinesStayInTheOldOneAndTheNextLineTriesAgain) {
  bool more = true;
  for (int n = 1; more; ++n) {
    board_clock_set(kNoon);
    CTrace trace("Log");
    board_clock_set(kNoon + kDay);
    more = failAllocation(static_cast<std::size_t>(n), [&] { trace.trace_string(kInfo, "turns the page"); });
    trace.trace_string(kInfo, "meanwhile");
    trace.trace_string(kInfo, "after");
    EXPECT_THAT(lines(file("01032024", 0)).back(), EndsWith("Info:after")) << n;
    EXPECT_THAT(files(), SizeIs(2)) << "no file is passed over";
    for (const auto& made : files()) fs::remove(made);
    EXPECT_TRUE(!more || n < 1000);
  }
}

TEST_F(TraceTest, AnotherTimeZoneHoldsFromTheNextSecondOn) {
  CTrace trace("Log");
  const auto hourIn = [&](const char* zone, int second) {
    setenv("TZ", zone, 1);
    board_clock_set(kNoon + second);
    trace.trace_string(kInfo, zone);
    return lines(file("01022024", 0)).back().substr(12, 2);
  };
  EXPECT_EQ(hourIn("EAST-5", 10), "17");
  EXPECT_EQ(hourIn("WEST3", 20), "09");
  EXPECT_EQ(hourIn("UTC0", 30), "12");
}

TEST_F(TraceTest, ALineThatTheDiskTakesOnlyInPartIsNotThere) {
  CTrace trace("Log");
  const fs::path path = file("01022024", 0);
  trace.trace_string(kInfo, "first");
  const std::size_t end = std::stoul(content(path));
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{end + 10, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  trace.trace_string(kInfo, "second");
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, before);
  EXPECT_EQ(content(path).substr(0, kHeader), header(end));
  trace.trace_string(kInfo, "third");
  EXPECT_THAT(lines(path), ElementsAre(EndsWith("Info:first"), EndsWith("Info:third")));
}

TEST_F(TraceTest, WithoutAFileLinesAreDropped) {
  fs::remove_all(directory());
  std::ofstream(directory()) << "in the way";
  CTrace trace("Log");
  trace.trace_string(kInfo, "nowhere");
  fs::remove(directory());
  trace.load(nullptr);
  trace.trace_string(kInfo, "found a place");
  EXPECT_THAT(files(), SizeIs(1));
}

TEST_F(TraceTest, AFileOfAFixedNameNamesNoLevelWithoutAModuleAndASharedOneKeepsItsLines) {
  { CTrace(nullptr, "private").trace_string(kInfo, "alone"); }
  const fs::path alone = directory() / ("private." + std::to_string(getpid()));
  EXPECT_THAT(lines(alone), ElementsAre(EndsWith("uuid=0x0] alone")));
  const fs::path shared = directory() / "shared";
  for (int i = 0; i < 2; ++i) CTrace("Log", "shared", true).trace_string(kInfo, "for all");
  EXPECT_THAT(lines(shared), ElementsAre(EndsWith("Info:for all"), EndsWith("Info:for all")));
  EXPECT_EQ(fs::status(shared).permissions(), fs::perms{0666});
  setHeader(shared, header(kLimit));
  CTrace("Log", "shared", true).trace_string(kInfo, "from the top");
  EXPECT_THAT(lines(shared), ElementsAre(EndsWith("Info:from the top")));
}

TEST_F(TraceTest, LinesOfManyThreadsAreAllThereAndWhole) {
  constexpr int kThreads = 4;
  constexpr int kLines = 500;
  CTrace trace("Log");
  std::vector<std::thread> writers;
  writers.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    writers.emplace_back([&, thread] {
      for (int i = 0; i < kLines; ++i) {
        const std::string text = std::to_string(thread) + " " + std::to_string(i) + std::string(50, '.');
        trace.trace_string(kInfo, text.c_str());
      }
    });
  }
  for (auto& writer : writers) writer.join();
  std::vector<int> next(kThreads);
  for (const auto& line : lines(file("01022024", 0))) {
    std::istringstream text(line.substr(line.find("Info:") + 5));
    std::size_t thread = 0;
    int number = -1;
    std::string rest;
    text >> thread >> number >> rest;
    ASSERT_LT(thread, next.size());
    EXPECT_EQ(number, next[thread]++);
    EXPECT_THAT(line, EndsWith(std::string(50, '.')));
  }
  EXPECT_EQ(next, std::vector<int>(kThreads, kLines));
}

// Reads what a descriptor holds without waiting for more.
std::string drain(int descriptor) {
  fcntl(descriptor, F_SETFL, O_NONBLOCK);
  std::string all;
  std::array<char, 4096> part;
  for (ssize_t count; (count = read(descriptor, part.data(), part.size())) > 0;)
    all.append(part.data(), static_cast<std::size_t>(count));
  return all;
}

enum class Output { kPipe, kPipeOfAnotherUser, kSocket };

class EchoTest : public testing::TestWithParam<Output> {
 protected:
  void SetUp() override {
    const int made =
        GetParam() == Output::kSocket ? socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) : pipe(ends.data());
    ASSERT_EQ(made, 0);
  }
  void TearDown() override {
    close(ends[1]);
    close(ends[0]);
  }

  // A pipe of another user cannot be opened anew; neither can one while there are no descriptors left.
  std::unique_ptr<platform::LineEcho> make() const {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{0, limit.rlim_max};
    if (GetParam() == Output::kPipeOfAnotherUser) setrlimit(RLIMIT_NOFILE, &none);
    auto echo = std::make_unique<platform::LineEcho>(ends[1]);
    setrlimit(RLIMIT_NOFILE, &limit);
    return echo;
  }

  std::array<int, 2> ends{};
  const std::string line = std::string(99, 'x') + '\n';
};

TEST_P(EchoTest, AReaderWhoDoesNotReadGetsWholeLinesLaterAndNobodyWaitsForHim) {
  const auto echo = make();
  for (int i = 0; i < 10000; ++i) echo->write(line);
  const std::string first = drain(ends[0]);
  EXPECT_GT(first.size(), 10 * line.size());
  EXPECT_EQ(first.size() % line.size(), 0U);
  echo->write("again\n");
  EXPECT_EQ(drain(ends[0]), "again\n");
  EXPECT_EQ(fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0) << "others share this descriptor's flags";
}

TEST_P(EchoTest, AReaderWhoLeavesDoesNotEndTheProcess) {
  const auto echo = make();
  echo->write(line);
  close(ends[0]);
  for (int i = 0; i < 10; ++i) echo->write(line);
  sigset_t pending;
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

INSTANTIATE_TEST_SUITE_P(Outputs, EchoTest,
                         testing::Values(Output::kPipe, Output::kPipeOfAnotherUser, Output::kSocket));

TEST(Echo, AFileIsAppendedToAndAClosedDescriptorIsLeftAlone) {
  const std::string path = testing::TempDir() + "echo" + std::to_string(getpid());
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_APPEND, 0600);
  const platform::LineEcho echo(file);
  echo.write("one\n");
  echo.write("two\n");
  EXPECT_EQ(fs::file_size(path), 8U);
  close(file);
  fs::remove(path);
  platform::LineEcho(file).write("nowhere\n");
}

}  // namespace
}  // namespace ORVE_MCUC
