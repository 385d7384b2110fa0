// Configuration files: announced, stored, removed and played.
#include "process/rvconfigspace.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "../../platform/board_fixture.h"
#include "driverutil.h"
#include "mcucutil.h"
#include "outgoing.h"
#include "proto/store/data_common.h"
#include "workending.h"

namespace ORVE_MCUC {
namespace {

namespace fs = std::filesystem;

class Pushes final : public Outgoing {
 public:
  int send(IMD_proto3rd message) override {
    sent.push_back(message.proto.m_uiRegisterUnitAddress);
    return 0;
  }
  int queue(std::unique_ptr<MCUProcessDataBlock>) override { return 0; }
  std::vector<uint32_t> sent;
};

class RvConfigSpaceTest : public BoardTest {
 protected:
  void SetUp() override {
    setDelayScale(100);
    takeTime();
    start("copper_ports = 0\ncards_per_port = 1\n");
    setOutgoing(&pushes);
  }
  void TearDown() override {
    setOutgoing(nullptr);
    Data_Global::deleteInstance();
  }
  fs::path stored(const std::string& name) const { return file("usr/orve/etc/lsd/cabCfg/" + name); }
  fs::path stored(int number) const { return stored("RvCfgFile_" + std::to_string(number) + ".rcfgx"); }
  std::string contents(const fs::path& path) const {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  void write(uint32_t at, const std::string& text) {
    space.write(at, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }
  void announce(const std::vector<uint32_t>& offsets, uint8_t enable = 1) {
    std::vector<uint8_t> bytes(32 + 32 * offsets.size());
    bytes[0] = enable;
    bytes[1] = static_cast<uint8_t>(offsets.size());
    for (std::size_t i = 0; i < offsets.size(); ++i) putLe32(bytes, 36 + 32 * i, offsets[i]);
    space.write(0x0F000000, bytes);
  }
  std::size_t cardWrites() const {
    const auto lines = journal();
    return static_cast<std::size_t>(
        std::ranges::count_if(lines, [](const auto& line) { return line.starts_with("card-write"); }));
  }
  void putFile(int number, const Bytes& bytes) const {
    fs::create_directories(stored(number).parent_path());
    std::ofstream(stored(number), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  // A file of that many items of one byte, each with a pause.
  static Bytes items(uint16_t count, uint16_t pause) {
    Bytes bytes(32);
    putLe16(bytes, 0, count);
    for (uint16_t n = 0; n < count; ++n) {
      const Bytes item{static_cast<uint8_t>(n),
                       0,
                       0,
                       3,
                       static_cast<uint8_t>(pause),
                       static_cast<uint8_t>(pause >> 8),
                       1,
                       0,
                       static_cast<uint8_t>(n + 1)};
      bytes.insert(bytes.end(), item.begin(), item.end());
    }
    return bytes;
  }

  Pushes pushes;
  RvConfigSpace space;
};

TEST_F(RvConfigSpaceTest, BodiesGoToTheFilesThatTheHeaderAnnounced) {
  fs::remove(stored(0).parent_path());
  write(0x0F002000, "lost");
  EXPECT_FALSE(fs::exists(stored(0).parent_path())) << "no header yet";
  EXPECT_EQ(flash(0x00E02000, 4), (Bytes{'l', 'o', 's', 't'})) << "but a copy in flash";
  announce({0x3000, 0x2000});
  write(0x0F000800, "index");
  write(0x0F001000, "!");
  write(0x0F002000, "one");
  write(0x0F002003, "more");
  write(0x0F003000, "zero");
  write(0x0F001FFF, "nowhere");
  EXPECT_EQ(contents(stored(1)), "onemore");
  EXPECT_EQ(contents(stored(0)), "zero");
  EXPECT_EQ(contents(stored("AllCabCfgFileName")), std::string("index").append(0x7FB, '\0') + "!");
  write(0x0F002000, "new");
  EXPECT_EQ(contents(stored(1)), "new") << "of the old file no tail is left";
  struct stat status {};
  ASSERT_EQ(::stat(stored(1).c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0664U);
  ASSERT_EQ(::stat(stored(1).parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0775U);
}

TEST_F(RvConfigSpaceTest, HeaderThatDiffersRemovesWhatItDoesNotAnnounce) {
  announce({0x2000, 0x3000});
  putFile(31, {});
  write(0x0F000800, "index");
  write(0x0F002000, "a");
  write(0x0F003000, "b");
  announce({0x4000, 0x5000});
  EXPECT_TRUE(fs::exists(stored(1)) && fs::exists(stored(31)) && fs::exists(stored("AllCabCfgFileName")));
  announce({0x4000}, 1);
  EXPECT_TRUE(fs::exists(stored(0)));
  EXPECT_FALSE(fs::exists(stored(1)) || fs::exists(stored(31)) || fs::exists(stored("AllCabCfgFileName")));
  announce({}, 0);
  EXPECT_FALSE(fs::exists(stored(0)));
}

TEST_F(RvConfigSpaceTest, HeaderThatIsNotSoundChangesNothingButItsFlashCopy) {
  announce({0x2000});
  write(0x0F002000, "a");
  announce(std::vector<uint32_t>(17, 0x2000));
  announce({0x800000, 0x2000});
  write(0x0F000000, "\x02");
  std::string shorterThanItsFiles(63, '\0');
  shorterThanItsFiles[0] = 2;
  shorterThanItsFiles[1] = 1;
  write(0x0F000000, shorterThanItsFiles);
  EXPECT_EQ(flash(0x00E00000, 2), (Bytes{2, 1}));
  write(0x0F002001, "b");
  EXPECT_EQ(contents(stored(0)), "ab");
}

TEST_F(RvConfigSpaceTest, ControlAndRenameAreaStoreNoFiles) {
  announce({0x2000});
  write(0x0FF00000, "x");
  write(0x0FF00001, "x");
  write(0x0FF00001, "xx");
  write(0x0FF0011F, "y");
  EXPECT_EQ(pushes.sent, (std::vector<uint32_t>{0x0FF00000, 0x0FF00001}));
  write(0x0F800000, "name");
  write(0x0FF00120, "beyond");
  EXPECT_EQ(flash(0x00D14000, 4), (Bytes{'n', 'a', 'm', 'e'}));
  EXPECT_EQ(flash(0x0FF00120 - 0x0EAEC000, 3), (Bytes{'b', 'e', 'y'}));
  EXPECT_FALSE(fs::exists(stored(0)));
}

TEST_F(RvConfigSpaceTest, PlaybackWritesToAllCardsAndPauses) {
  Bytes bytes = items(2, 100);
  putLe16(bytes, 0, 3);
  const Bytes head{0x00, 0x10, 0x00, 0x04, 0, 0, 0x4C, 0x04};
  bytes.insert(bytes.end(), head.begin(), head.end());
  bytes.resize(bytes.size() + 1100, 0xAB);
  putFile(31, bytes);
  const auto before = elapsed();
  write(0x0FF0011F, "\x02");
  EXPECT_EQ(cardWrites(), 0U) << "only a byte of 1 plays";
  write(0x0FF0011F, "\x01");
  EXPECT_EQ(cardWrites(), 5U);
  EXPECT_EQ(card(1, 0, 0, 0x03000001, 1), Bytes{2});
  EXPECT_EQ(card(1, 0, 0, 0x04001000 + 1099, 2), (Bytes{0xAB, 0}));
  EXPECT_EQ(elapsed() - before, std::chrono::milliseconds(2 * 115 + 2 * 10 + 15));
  EXPECT_THAT(journal(), testing::Contains("card-write 1 255 65535 0x03000000 1 01"));
}

TEST_F(RvConfigSpaceTest, PlaybackOfWhatIsNotThereIsNothing) {
  EXPECT_EQ(DriverUtil::getInstance()->LoadRvCfgToRecvCard(5), 0);
  EXPECT_NE(DriverUtil::getInstance()->LoadRvCfgToRecvCard(32), 0);
  putFile(5, items(3, 0));
  fs::resize_file(stored(5), 9'000'000);
  EXPECT_NE(DriverUtil::getInstance()->LoadRvCfgToRecvCard(5), 0) << "larger than the space";
  EXPECT_EQ(cardWrites(), 0U);
  fs::resize_file(stored(5), 32 + 9 + 8);
  EXPECT_NE(DriverUtil::getInstance()->LoadRvCfgToRecvCard(5), 0) << "cut within an item";
  EXPECT_EQ(cardWrites(), 1U);
}

TEST_F(RvConfigSpaceTest, PlaybackGoesOnBehindEveryCardWriteThatFails) {
  putFile(0, items(4, 0));
  for (uint32_t n = 1; n <= 4; ++n) {
    failCall(Fault::CardWrite, n);
    EXPECT_NE(DriverUtil::getInstance()->LoadRvCfgToRecvCard(0), 0);
    clearFaults();
    EXPECT_EQ(cardWrites(), 4U * n);
  }
  EXPECT_EQ(DriverUtil::getInstance()->LoadRvCfgToRecvCard(0), 0);
}

TEST_F(RvConfigSpaceTest, PlaybackEndsForAResetAtTheEndAndAfterTenMinutes) {
  putFile(0, items(200, 65535));
  write(0x0FF00100, "\x01");
  EXPECT_EQ(cardWrites(), 10U) << "ten minutes of 65.55 s";
  EXPECT_GE(elapsed(), std::chrono::minutes(10));
  EXPECT_LT(elapsed(), std::chrono::minutes(10) + std::chrono::milliseconds(100));
  Data_Global::getInstance()->RebootRF = 3;
  write(0x0FF00100, "\x01");
  EXPECT_EQ(cardWrites(), 10U);
  Data_Global::getInstance()->RebootRF = 0;
  setWorkEnding(true);
  write(0x0FF00100, "\x01");
  setWorkEnding(false);
  EXPECT_EQ(cardWrites(), 10U);
}

TEST_F(RvConfigSpaceTest, LongPauseIsLeftWhenAResetComes) {
  putFile(0, items(2, 65535));
  takeTime(std::chrono::milliseconds(100));
  std::thread work([this] { write(0x0FF00100, "\x01"); });
  ASSERT_TRUE(awaitHeld(1));
  Data_Global::getInstance()->RebootRF = 3;
  advance(std::chrono::milliseconds(100));
  work.join();
  EXPECT_EQ(cardWrites(), 1U);
}

TEST_F(RvConfigSpaceTest, OnlyRegularFilesAreTouched) {
  announce({0x2000, 0x3000, 0x4000});
  const fs::path outside = file("outside");
  std::ofstream(outside) << "keep";
  fs::create_directories(stored(0).parent_path());
  fs::create_symlink(outside, stored(0));
  fs::create_directory(stored(1));
  ASSERT_EQ(::mkfifo(stored(2).c_str(), 0600), 0);
  for (const uint32_t at : {0x2000U, 0x3000U, 0x4000U}) {
    write(0x0F000000 + at, "first");
    write(0x0F000005 + at, "next");
  }
  for (const unsigned n : {0U, 1U, 2U}) EXPECT_NE(DriverUtil::getInstance()->LoadRvCfgToRecvCard(n), 0) << n;
  DriverUtil::getInstance()->RemoveOtherRvFile(-5, 1000);
  EXPECT_EQ(contents(outside), "keep");
  EXPECT_TRUE(fs::is_symlink(stored(0)) && fs::is_directory(stored(1)) && fs::is_fifo(stored(2)));
}

TEST_F(RvConfigSpaceTest, FilesWithoutANumberAreNamedByTheirPath) {
  DriverUtil& driver = *DriverUtil::getInstance();
  const uint8_t byte = 'x';
  EXPECT_EQ(driver.RemoveRvFile(DriverUtil::kCabCfgIndex, 255), 0) << "there is none";
  EXPECT_EQ(driver.WriteRvFileToFalsh("/tmp/some/where", 32, 2, &byte, 1), 0);
  EXPECT_EQ(contents(file("tmp/some/where")), std::string("\0\0x", 3));
  EXPECT_EQ(driver.RemoveRvFile("/tmp/some/where", -1), 0);
  EXPECT_FALSE(fs::exists(file("tmp/some/where")));
  for (const char* bad : {"/tmp/", "name", "", "/tmp/..", "/tmp/."}) {
    EXPECT_EQ(driver.WriteRvFileToFalsh(bad, 255, 0, &byte, 1), 1) << bad;
    EXPECT_EQ(driver.RemoveRvFile(bad, 255), -1) << bad;
  }
  EXPECT_EQ(driver.RemoveRvFile(nullptr, 255), -1);
  std::ofstream(file("tmp/file")) << "x";
  EXPECT_EQ(driver.RemoveRvFile("/tmp/file/in", 255), -1) << "cannot be examined";
}

// As a full disk does it, somewhere within the chunk.
TEST_F(RvConfigSpaceTest, ChunkThatDoesNotFitIsLostAsAWhole) {
  announce({0x2000});
  write(0x0F002000, std::string(2000, 'a'));
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto onSignal = std::signal(SIGXFSZ, SIG_IGN);
  const std::string chunk(2048, 'b');
  const rlimit full{3000, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &full), 0);
  const int result = DriverUtil::getInstance()->WriteRvFileToFalsh(
      nullptr, 0, 2000, reinterpret_cast<const uint8_t*>(chunk.data()), 2048);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, onSignal);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(fs::file_size(stored(0)), 2000U);
  write(0x0F002000 + 2000, chunk);
  EXPECT_EQ(contents(stored(0)), std::string(2000, 'a') + chunk);
}

TEST_F(RvConfigSpaceTest, FilesOutliveTheProcessAndTheHeaderDoesNot) {
  announce({0x2000});
  write(0x0F002000, std::string(reinterpret_cast<const char*>(items(1, 0).data()), 41));
  startAgain();
  space = {};
  write(0x0F002029, "tail");
  EXPECT_EQ(fs::file_size(stored(0)), 41U);
  write(0x0FF00100, "\x01");
  EXPECT_EQ(cardWrites(), 1U);
}

TEST_F(RvConfigSpaceTest, FlashThatFailsKeepsNoFileFromBeingStored) {
  announce({0x2000});
  failNext(Fault::FlashWrite, 3);
  write(0x0F002000, "body");
  EXPECT_EQ(contents(stored(0)), "body");
  EXPECT_EQ(flash(0x00E02000, 4), Bytes(4));
}

}  // namespace
}  // namespace ORVE_MCUC
