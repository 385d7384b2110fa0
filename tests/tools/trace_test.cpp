// The trace as parlctl reads it, and what it makes of it: requests, captures, archives.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "capturefile.h"
#include "peer/error.h"
#include "tarfile.h"
#include "tracelog.h"
#include "tracetext.h"

using namespace parlctl;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class TraceTest : public testing::Test {
 protected:
  TraceTest() : directory(fs::temp_directory_path() / ("trace" + std::to_string(getpid()))) {
    fs::create_directories(directory);
  }
  ~TraceTest() override { fs::remove_all(directory); }

  // A file as the daemon leaves it: header, data, and stale bytes behind them.
  void write(const std::string& name, const std::string& data, const std::string& stale = "") const {
    std::string header = std::to_string(32 + data.size());
    header.resize(31, ' ');
    std::ofstream(directory / name, std::ios::binary) << header << '\n' << data << stale;
  }
  std::vector<std::string> more() {
    std::vector<std::string> texts;
    for (const TraceLine& line : reader.more()) texts.push_back(line.message);
    return texts;
  }
  static std::string line(const std::string& time, const std::string& message, const char* level = "Info") {
    return "[01/02/2024 " + time + " pid=812 uuid=0x0] " + level + ":stub/stubutil : 78 " + message + '\n';
  }

  fs::path directory;
  TraceReader reader{directory};
};

TEST_F(TraceTest, FilesAreReadInTheirOrderUpToWhatTheirHeadersSay) {
  write("parlend_info_01022024_1.812.log", line("10:20:31.000", "third"), "stale\n");
  write("parlend_info_01022024_0.812.log", line("10:20:30.456", "first") + line("10:20:30.457", "second"));
  write("other.log", line("10:20:30.000", "of somebody else"));
  EXPECT_THAT(more(), ElementsAre("first", "second", "third"));
  EXPECT_THAT(more(), ElementsAre());
  write("parlend_info_01022024_1.812.log",
        line("10:20:31.000", "third") + line("10:20:32.000", "fourth") + "[01/02");
  EXPECT_THAT(more(), ElementsAre("fourth"));
  // After counter 9 a file is begun anew, with more in it than there was.
  write("parlend_info_01022024_0.812.log",
        line("11:00:00.000", "fifth") + line("11:00:00.001", "sixth") + "tail\n");
  EXPECT_THAT(more(), ElementsAre("fifth", "sixth", "tail"));
  write("parlend_info_01022024_2.812.log", "", "");
  std::ofstream(directory / "parlend_info_01022024_3.812.log") << "no header";
  EXPECT_THAT(more(), ElementsAre());
  EXPECT_THROW(TraceReader(directory / "none").more(), peer::Error);
}

TEST_F(TraceTest, ALineIsTakenApart) {
  TraceLine parsed;
  ASSERT_TRUE(parseTraceLine("[12/31/2024 23:59:59.999 pid=8 uuid=0x0] Warning:main : 7 a : 8 b", parsed));
  EXPECT_EQ(stampText(parsed.milliseconds), "12/31/2024 23:59:59.999");
  EXPECT_EQ(parsed.level, TraceLevel::Warning);
  EXPECT_EQ(parsed.source, "main");
  EXPECT_EQ(parsed.message, "a : 8 b");
  for (const char* text : {"", "no stamp", "[12/31/2024 23:59", "[13/31/2024 23:59:59.999 pid=8"})
    EXPECT_FALSE(parseTraceLine(text, parsed)) << text;
  for (const char* text : {"[12/31/2024 23:59:59.999", "[12/31/2024 23:59:59.999 pid=8 uuid=0x0] ",
                           "[12/31/2024 23:59:59.999 pid=8 uuid=0x0] Info:x : 5"})
    EXPECT_TRUE(parseTraceLine(text, parsed)) << text;
}

TEST(TraceTimeTest, MomentsArePastOnesInManyForms) {
  const int64_t now = 1'704'190'830'000;  // 01/02/2024 10:20:30
  EXPECT_EQ(stampText(momentOf("90s", now)), "01/02/2024 10:19:00.000");
  EXPECT_EQ(stampText(momentOf("1d", now)), "01/01/2024 10:20:30.000");
  EXPECT_EQ(stampText(momentOf("09:05", now)), "01/02/2024 09:05:00.000");
  EXPECT_EQ(stampText(momentOf("2023-12-31T01:02:03", now)), "12/31/2023 01:02:03.000");
  EXPECT_EQ(stampText(momentOf("2023-12-31", now)), "12/31/2023 00:00:00.000");
  for (const char* text : {"", "x", "10", "10:20:30:40", "25:00", "2023-13-01", "2023-12-31T", "-5m", "5w",
                           "2023-02-30", "2023-12-31T24:00", "2023-12-31T10:60", "10:-5"})
    EXPECT_THROW(momentOf(text, now), peer::Error) << text;
}

// The lines of one request, as the daemon traces it.
std::vector<std::pair<int64_t, std::string>> traced(const std::string& frame, unsigned length) {
  return {{0,
           "Apipc, Get a new Packet: ihead_t uiid = 0x010a3900 label count = 1 size = 0 large label = 28 "
           "small label = 0"},
          {0, "============================= Begin Deal DataBlock =============================="},
          {0, "Apipc: the new Packet's datalength = " + std::to_string(length) + " the Data = " + frame},
          {2, "ReplyMsg: the ack = 0"},
          {2, "ReplyMsg: reply message successfully. ret = 0 datalength = 53"},
          {3, "============================= Finish Deal DataBlock ============================="}};
}

std::optional<TracedRequest> folded(const std::vector<std::pair<int64_t, std::string>>& lines) {
  RequestFolder folder;
  std::optional<TracedRequest> request;
  for (const auto& [at, message] : lines) {
    TraceLine line;
    line.milliseconds = at;
    line.level = message.starts_with("===  ") ? TraceLevel::Error : TraceLevel::Info;
    line.message = message;
    if (auto done = folder.take(line)) request = std::move(done);
  }
  return request;
}

TEST(TraceRequestTest, ARequestIsFoldedIntoOneLine) {
  const auto read = folded(traced("55 AA 00 01 00 00 00 00 00 00 00 00 10 00 30 02 05 00 9D 55 ", 20));
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->whole());
  EXPECT_EQ(decoded(*read).text, "00:00:00.000 lsd read 0x02300010:5 ok 3000 us backup info + 0x10");
  const auto write = folded(traced("55 AA 00 01 00 00 00 00 00 00 01 00 00 00 30 02 12 00 01 02 03", 38));
  ASSERT_TRUE(write);
  EXPECT_FALSE(write->whole());
  EXPECT_THAT(decoded(*write).text, HasSubstr("write 0x02300000:18 ok 010203+15 3000 us backup info"));
  auto silent = traced("55 AA", 2);
  silent.erase(silent.begin() + 3, silent.begin() + 5);
  silent.insert(silent.begin() + 3, {1, "===  f === wrong"});
  const auto broken = folded(silent);
  ASSERT_TRUE(broken);
  EXPECT_EQ(decoded(*broken).text,
            "00:00:00.000 lsd a frame of 2 bytes no reply 3000 us\n             ===  f === wrong");
  EXPECT_FALSE(folded({{0, "Finish Deal DataBlock"}}));
}

// Names give way, and what the stamps cannot tell is not told.
TEST(TraceRequestTest, ALineFitsTheScreen) {
  TracedRequest request;
  request.task = 0x010A7A81;
  request.frame = peer::encode({.code = peer::kRead, .address = 0x02810000, .length = 720});
  request.frameLength = request.frame.size();
  request.ack = 0;
  request.replyBytes = 720;
  EXPECT_EQ(decoded(request).text,
            "00:00:00.000 tool A81 read 0x02810000:720 ok <1000 us shortcut screen configur..");
  request.replyBytes = 3;
  EXPECT_THAT(decoded(request).text, HasSubstr("ok 3 bytes <1000 us shortcut"));
  request.frame = peer::encode(
      {.code = peer::kWrite, .address = 0x02810000, .length = 700, .data = peer::Bytes(700, 0xAB)});
  request.frameLength = request.frame.size();
  request.microseconds = 12'345'000;
  request.errors = {std::string(60, 'a') + ' ' + std::string(40, 'b')};
  std::istringstream lines(decoded(request).text);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

TEST_F(TraceTest, CapturesAreWrittenAndReadAndOthersRefused) {
  const std::string path = (directory / "capture").string();
  const auto request = folded(traced("55 AA 00 01 00 00 00 00 00 00 00 00 10 00 30 02 05 00 9D 55 ", 20));
  std::ofstream(path) << captureHead() << captureLine(*request);
  const auto back = readCapture(path);
  ASSERT_EQ(back.size(), 1U);
  EXPECT_EQ(back[0].frame, request->frame);
  EXPECT_EQ(back[0].replyBytes, 5U);
  EXPECT_EQ(captureLine(back[0]).substr(40), captureLine(*request).substr(40));
  for (const std::string& content :
       {std::string(), std::string("x"), std::string("{}\n"), captureHead() + "{}\n",
        captureHead() + R"({"task":1,"frame":"5"})" + '\n'}) {
    std::ofstream(path) << content;
    EXPECT_THROW(readCapture(path), peer::Error) << content;
  }
  EXPECT_THROW(readCapture(path + "none"), peer::Error);
}

TEST_F(TraceTest, AnArchiveIsOneThatTarReads) {
  const fs::path tar = directory / "a.tar";
  std::ofstream(tar, std::ios::binary) << tarEntry("d/one.txt", "one", 1'700'000'000)
                                       << tarEntry("d/two", std::string(513, 'x'), 0) << tarEnd();
  ASSERT_EQ(std::system(("tar -C " + directory.string() + " -xf " + tar.string()).c_str()), 0);
  EXPECT_EQ(fs::file_size(directory / "d/one.txt"), 3U);
  EXPECT_EQ(fs::file_size(directory / "d/two"), 513U);
}

}  // namespace
