#include <gmock/gmock.h>

#include <atomic>
#include <numeric>
#include <thread>

#include "board_conf.h"
#include "board_fixture.h"
#include "platform/driver.h"
#include "platform/sysconf.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<unsigned char>;

recvcard_mesg request(unsigned char type, unsigned char port, uint16_t board, uint32_t address,
                      unsigned char code, const Bytes& data) {
  recvcard_mesg made{};
  made.DeviceType = type;
  made.ProtAddr = port;
  made.BoardAddr = board;
  made.code = code;
  made.RegisterAddr = address;
  made.length = static_cast<uint16_t>(data.size());
  const auto* head = reinterpret_cast<const unsigned char*>(&made);
  unsigned sum = std::accumulate(head, head + 12, 0U);
  if (code == 1) sum = std::accumulate(data.begin(), data.end(), sum);
  made.checksum = static_cast<uint16_t>(sum);
  return made;
}

int writeCard(unsigned char type, unsigned char port, uint16_t board, uint32_t address, Bytes data) {
  recvcard_mesg made = request(type, port, board, address, 1, data);
  return WriteFPGAToRecvCard(PLATFORM_FPGA_BUS, &made, port, data.data());
}

/** What the card answers; empty: nothing. */
Bytes readCard(unsigned char type, unsigned char port, uint16_t board, uint32_t address, size_t count) {
  Bytes data(count);
  recvcard_mesg made = request(type, port, board, address, 0, data);
  return ReadFPGAformRecvCard(PLATFORM_FPGA_BUS, &made, port, data.data()) == 0 ? data : Bytes{};
}

int writeFpga(uint32_t address, const Bytes& data) {
  return WriteFPGABlock(PLATFORM_FPGA_BUS, address, static_cast<uint32_t>(data.size()), data.data());
}

Bytes readFpga(uint32_t address, std::size_t count) {
  Bytes data(count);
  return ReadFPGABlock(PLATFORM_FPGA_BUS, address, static_cast<uint16_t>(count), data.data()) == 0 ? data
                                                                                                   : Bytes{};
}

TEST_F(BoardTest, PowerOnShowsTheLinksOfTheConfiguration) {
  start(
      "copper_ports = 0-2, 7 12\nfiber1_ports = 9\nfiber2_ports = 15\nfiber_module = 0xA0\nfpga_status = "
      "down\n");
  EXPECT_THAT(fpga(0xF05100, 4), ElementsAre(0x07, 0x08, 0x00, 0x01));
  EXPECT_THAT(fpga(0x9F, 1), ElementsAre(0x08));
  EXPECT_THAT(fpga(0x1F2, 4), ElementsAre(0x00, 0x02, 0x00, 0x80));
  EXPECT_THAT(fpga(0xF04000, 4), ElementsAre(0x00, 0x02, 0x00, 0x80));
  EXPECT_THAT(fpga(0x1D7, 1), ElementsAre(0xA0));
  char line[16] = {};
  EXPECT_EQ(board_shell_line("/bin/cat /sys/class/fpga/fpga_conf", line, sizeof line), 2);
  EXPECT_STREQ(line, "0\n");
}

TEST_F(BoardTest, AWrongConfigurationLineIsNamedAndEndsTheStart) {
  const std::pair<const char*, const char*> wrong[] = {
      {"# cards\n\ncolour = red\n", "board.conf:3: unknown key \"colour\""},
      {"card_bit = 256\n", "board.conf:1: bad value \"256\" for card_bit"},
      {"copper_ports = 0-16\n", "board.conf:1: bad value \"0-16\" for copper_ports"},
      {"copper_ports = 5-3\n", "board.conf:1: bad value \"5-3\" for copper_ports"},
      {"cards_per_port = 4x\n", "board.conf:1: bad value \"4x\" for cards_per_port"},
      {"input = 0 dvi\n", "board.conf:1: bad value \"0 dvi\" for input"},
      {"input = 3 dvi\ninput = 0x03 vga\n", "board.conf:2: bad value \"0x03 vga\" for input"},
      {"sensor = 0 0 1\n", "board.conf:1: bad value \"0 0 1\" for sensor"},
      {"journal\n", "board.conf:1: not a \"key = value\" line"}};
  for (const auto& [text, message] : wrong) {
    simboard::BoardConf conf;
    std::string error;
    EXPECT_FALSE(simboard::parseConf(text, conf, error)) << text;
    EXPECT_EQ(error, message);
  }
  EXPECT_EXIT(start("card_bit = x\n"), testing::ExitedWithCode(2), "^board.conf:1: .*card_bit\n$");
}

TEST_F(BoardTest, ASecondDaemonIsRefused) {
  start();
  EXPECT_EXIT(board_start(0, nullptr), testing::ExitedWithCode(2),
              "another daemon already runs on the board");
}

TEST_F(BoardTest, ABusWriteLeavesTheStatusRegistersAlone) {
  start();
  const Bytes before = fpga(0x1E, 2);
  EXPECT_EQ(writeFpga(0x1C, Bytes(5, 0xEE)), 0);
  EXPECT_THAT(fpga(0x1C, 2), ElementsAre(0xEE, 0xEE));
  EXPECT_EQ(fpga(0x1E, 2), before);
  EXPECT_THAT(fpga(0x20, 1), ElementsAre(0xEE));
  EXPECT_EQ(writeFpga(0x1F2, Bytes(10, 0xEE)), 0);
  EXPECT_EQ(fpga(0x1F2, 10), Bytes(10, 0));
}

TEST_F(BoardTest, TransfersReachTheEndAndBeyondItFailAndTouchNothing) {
  start();
  Bytes buffer(4, 0x77);
  for (const uint32_t length : {1U, 4U}) {
    EXPECT_EQ(WriteDataToFlashx(0x02000000 - length, length, buffer.data()), 0);
    EXPECT_EQ(ReadDataFromFlashx(0x02000000 - length, length, buffer.data()), 0);
  }
  EXPECT_EQ(flash(0x01FFFFFC, 4), Bytes(4, 0x77));
  EXPECT_EQ(readFpga(0x0FFFFFFC, 4), Bytes(4, 0));
  EXPECT_NE(writeFpga(0x0FFFFFFE, buffer), 0);
  EXPECT_EQ(fpga(0x0FFFFFFE, 2), Bytes(2, 0));
  EXPECT_EQ(readFpga(0x0FFFFFFD, 4), Bytes());
  EXPECT_EQ(writeFpga(0x0FFFFFFC, Bytes(4, 0)), 0);
  EXPECT_NE(ReadFPGABlock(PLATFORM_FPGA_BUS, 0xFFFFFFFF, 4, buffer.data()), 0);
  EXPECT_NE(WriteDataToFlashx(0x01FFFFFE, 4, buffer.data()), 0);
  EXPECT_NE(ReadDataFromFlashx(0x02000000, 1, buffer.data()), 0);
  EXPECT_EQ(buffer, Bytes(4, 0x77));
}

TEST_F(BoardTest, ContentsOutliveTheDaemonAndThePowerCycleClearsTheBusOnly) {
  start();
  const unsigned char value = 0x42;
  writeFpga(0x1EB, {value});
  EXPECT_EQ(WriteDataToFlashx(0xA3B100, 1, &value), 0);
  startAgain();
  EXPECT_THAT(fpga(0x1EB, 1), ElementsAre(value));
  board_shell("reboot -f");
  powerOn();
  EXPECT_THAT(fpga(0x1EB, 1), ElementsAre(0));
  EXPECT_THAT(fpga(0x1F, 1), ElementsAre(0x0F));
  EXPECT_THAT(flash(0xA3B100, 1), ElementsAre(value));
}

TEST_F(BoardTest, ABoardThatIsStartedAgainMapsItsFilesOnce) {
  for (int starts = 0; starts < 3; ++starts) start();
  std::ifstream maps("/proc/self/maps");
  int mapped = 0;
  for (std::string line; std::getline(maps, line);) mapped += line.find("/hw/") != line.npos;
  EXPECT_EQ(mapped, 2) << "control page and bus";
}

TEST_F(BoardTest, AFactoryCopyTakesTheFlashsPlaceAtPowerOn) {
  start();
  const unsigned char before = 0x11;
  const unsigned char after = 0x22;
  WriteDataToFlashx(0x100, 1, &before);
  EXPECT_EQ(board_shell("cp /usr/orve/etc/sysconf/kespara_factory /usr/orve/etc/sysconf/kespara_factory_tmp"),
            0);
  EXPECT_EQ(WriteDataToFactoryTmpFlashx(0x200, 1, &after), 0);
  EXPECT_THAT(flash(0x200, 1), ElementsAre(0));
  board_shell("reboot -f");
  powerOn();
  EXPECT_THAT(flash(0x100, 1), ElementsAre(0));
  EXPECT_THAT(flash(0x200, 1), ElementsAre(after));
  EXPECT_THAT(flash(0xC20030, 4), ElementsAre(0, 1, 1, 1));
  EXPECT_FALSE(std::filesystem::exists(file("usr/orve/etc/sysconf/kespara_factory_tmp")));
}

TEST_F(BoardTest, FaultsAreCountedDownOrStay) {
  start();
  failNext(Fault::FpgaWrite, 2);
  EXPECT_NE(writeFpga(0, {1}), 0);
  EXPECT_NE(writeFpga(0, {1}), 0);
  EXPECT_EQ(writeFpga(0, {1}), 0);
  failNext(Fault::EnvOpen, kEveryCall);
  for (int i = 0; i < 3; ++i) EXPECT_NE(sysconf_openenv(), 0);
}

TEST_F(BoardTest, CardsKeepTheirRegistersApartAndABroadcastReachesThemAll) {
  start(
      "copper_ports = 1\nfiber2_ports = 8\ncards_per_port = 2\ncard_width = 0x140\ncard_brightness = 0x7F\n");
  EXPECT_THAT(readCard(1, 1, 0, 0x02000017, 4), ElementsAre(0x40, 0x01, 128, 0));
  EXPECT_EQ(writeCard(1, 1, 1, 0x020000FE, {1, 2, 3, 4}), 0);
  EXPECT_THAT(readCard(1, 1, 1, 0x020000FE, 4), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(readCard(1, 1, 0, 0x020000FE, 4), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(readCard(2, 1, 1, 0x020000FE, 4), ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(writeCard(1, 0xFF, 0xFFFF, 0x02000001, {0x99}), 0);
  EXPECT_THAT(readCard(1, 8, 1, 0x02000001, 1), ElementsAre(0x99));
  EXPECT_THAT(readCard(1, 1, 2, 0x02000001, 1), IsEmpty());
  EXPECT_THAT(readCard(1, 0, 0, 0x02000001, 1), IsEmpty());
  EXPECT_NE(writeCard(5, 1, 0, 0, {1}), 0);
}

TEST_F(BoardTest, ARequestWithAWrongChecksumIsNotAnswered) {
  start();
  Bytes data{0x55};
  recvcard_mesg made = request(1, 0, 0, 0x02000001, 1, data);
  ++made.checksum;
  EXPECT_NE(WriteFPGAToRecvCard(PLATFORM_FPGA_BUS, &made, 0, data.data()), 0);
  EXPECT_THAT(readCard(1, 0, 0, 0x02000001, 1), ElementsAre(0xFF));
}

TEST_F(BoardTest, ALinkThatIsCutWhileTheDaemonRunsTakesItsCardsAway) {
  start();
  poke("hw/fpga.bin", 0x1F, {0x0E});
  EXPECT_THAT(readCard(1, 0, 0, 0x02000001, 1), IsEmpty());
  EXPECT_THAT(readCard(1, 1, 0, 0x02000001, 1), ElementsAre(0xFF));
}

TEST_F(BoardTest, ABrightnessPacketOnTheBusReachesTheCards) {
  start();
  Bytes global{0x01, 2, 0xFF, 0xFF, 1, 0, 0x01, 0, 0, 0x02, 1, 0, 0x33, 0x39, 0x02};
  writeFpga(0x400, global);
  writeFpga(0x300000, {0x01, 2, 0xFF, 0xFF, 1, 0, 0x02, 0, 0, 0x02, 4, 0, 1, 2, 3, 4, 0x14, 0x02});
  EXPECT_THAT(readCard(1, 2, 5, 0x02000001, 5), ElementsAre(0x33, 1, 2, 3, 4));
  EXPECT_THAT(readCard(1, 1, 5, 0x02000001, 2), ElementsAre(0xFF, 0));
  global[12] = 0x44;  // the checksum is that of another brightness
  writeFpga(0x400, global);
  global.resize(4);
  writeFpga(0x400, global);
  EXPECT_THAT(readCard(1, 2, 5, 0x02000001, 1), ElementsAre(0x33));
}

class SensorTest : public BoardTest {
 protected:
  /** Asks a sensor on card 3 of port 0. */
  static Bytes ask(unsigned char sensor) {
    EXPECT_EQ(writeCard(2, 0, 3, 0x06000000, {sensor, 0, 0, 0, 0x55, 0xAA, 0x01, 0x02, 0x80, 0xFF, 0x81}), 0);
    return readCard(2, 0, 3, 0x06000000, 5);
  }
  void setLux(uint32_t index, const Bytes& lux) { poke("hw/control.bin", 256 + 4 * index, lux); }
};

TEST_F(SensorTest, ASensorAnswersWithItsReadingUntilItFallsSilent) {
  start("sensor = 0 3 1 1000\nsensor = 0 3 2 0xFFFFFFFF\n");
  EXPECT_THAT(ask(1), ElementsAre(1, 2, 0x81, 0xF4, 0));
  EXPECT_THAT(ask(2), IsEmpty());
  setLux(0, {0xFF, 0xFF, 0xFF, 0xFF});
  setLux(1, {0x00, 0x00, 0x01, 0x00});  // more than an answer can say
  EXPECT_THAT(ask(1), IsEmpty());
  EXPECT_THAT(ask(2), ElementsAre(1, 2, 0xFF, 0xFF, 0));
  EXPECT_THAT(ask(3), ElementsAre(3, 0, 0, 0, 0x55)) << "without a sensor they are registers like any other";
}

TEST_F(SensorTest, ReadingsAreKeptFromStartToStartAndANewSensorBringsItsOwn) {
  start("sensor = 0 3 1 1000\n");
  setLux(0, {20, 0, 0, 0});
  start("sensor = 0 3 1 1000\nsensor = 0 3 2 40\n");
  EXPECT_THAT(ask(1), ElementsAre(1, 2, 0x80, 10, 0));
  EXPECT_THAT(ask(2), ElementsAre(1, 2, 0x80, 20, 0));
}

TEST_F(BoardTest, TheEnvironmentStoreIsSharedWithTheShellAndKeepsItsLinesWhole) {
  start();
  EXPECT_EQ(board_shell("sysconfig set firstboot 1"), 0);
  ASSERT_EQ(sysconf_openenv(), 0);
  const char* firstboot = sysconf_getenv("firstboot");
  EXPECT_STREQ(firstboot, "1");
  EXPECT_EQ(sysconf_getenv("device_sn"), nullptr);
  EXPECT_EQ(sysconf_setenv("device_sn", "00000000000000aa"), 0);
  EXPECT_NE(sysconf_setenv("device_sn", "1\nfirstboot=0"), 0);
  EXPECT_STREQ(sysconf_getenv("device_sn"), "00000000000000aa");
  EXPECT_STREQ(firstboot, "1");
  sysconf_closeenv();
  EXPECT_EQ(text("etc/sysconf.env"), "device_sn=00000000000000aa\nfirstboot=1\n");
}

TEST_F(BoardTest, ShellCommandsStayInsideTheBoardDirectory) {
  start();
  EXPECT_EQ(board_shell("mkdir -p /log/deep/er"), 0);
  EXPECT_TRUE(std::filesystem::is_directory(file("log/deep/er")));
  EXPECT_EQ(board_shell("echo \"a;  b\" >> /root/screen_zero.txt"), 0);
  EXPECT_EQ(text("root/screen_zero.txt"), "a;  b\n");
  EXPECT_EQ(board_shell("fpga w s 0x1eb 0x5"), 0);
  EXPECT_THAT(fpga(0x1EB, 1), ElementsAre(5));
  EXPECT_NE(board_shell("rm -r /log/../../x"), 0);
  EXPECT_NE(board_shell("rm -r /"), 0);
  EXPECT_TRUE(std::filesystem::exists(file("board.conf")));
  EXPECT_NE(board_shell("mkdir -p /log/x; touch /tmp/y"), 0);
  EXPECT_FALSE(std::filesystem::exists(file("tmp/y")));
  EXPECT_EQ(board_shell(""), 127);
  char mapped[8];
  EXPECT_EQ(board_path("/log/trace", mapped, sizeof mapped), -1);
}

TEST_F(BoardTest, ALinkDoesNotLeadAShellCommandOutOfTheBoardDirectory) {
  start();
  const auto outside =
      std::filesystem::temp_directory_path() / ("outside" + file("").parent_path().filename().string());
  std::filesystem::create_directory(outside);
  std::ofstream(outside / "kept") << "kept";
  std::filesystem::create_directory_symlink(outside, file("tmp/link"));
  for (const char* command :
       {"mkdir -p /tmp/link/new", "rm -r /tmp/link/kept", "echo \"more\" >> /tmp/link/kept",
        "cp /board.conf /tmp/link/kept", "cp /tmp/link/kept /tmp/copy", "/bin/cat /tmp/link/kept"})
    EXPECT_NE(board_shell(command), 0) << command;
  EXPECT_EQ(board_shell("rm -r /tmp/link"), 0);
  EXPECT_FALSE(std::filesystem::exists(outside / "new"));
  EXPECT_EQ(std::filesystem::file_size(outside / "kept"), 4U);
  std::filesystem::remove_all(outside);
}

TEST_F(BoardTest, SettingTheClockMovesTheBoardsTimeAndNotTheHosts) {
  setenv("TZ", "UTC", 1);
  tzset();
  start();
  EXPECT_EQ(board_clock_set(31536000), 0);
  char date[50] = {};
  EXPECT_EQ(sysconf_get_date_ymd(date), 0);
  EXPECT_STREQ(date, "1971-01-01");
  EXPECT_GT(time(nullptr), 31622400);
  setenv("TZ", "EST5", 1);
  EXPECT_EQ(sysconf_get_date_ymd(date), 0);
  EXPECT_STREQ(date, "1970-12-31") << "nobody but the caller notices another time zone";
  setenv("TZ", "UTC", 1);
  tzset();
}

TEST_F(BoardTest, TheJournalTellsWhatChangedTheBoardInItsOrder) {
  start();
  writeFpga(0x18, Bytes(66, 0xAB));
  readCard(1, 0, 0, 0x02000017, 4);
  failNext(Fault::CardWrite, 1);
  writeCard(1, 0, 3, 0x02000001, {0x10});
  board_shell("sync");
  board_clock_set(12);
  std::string shown;
  for (int i = 0; i < 64; ++i) shown += "ab";
  EXPECT_THAT(journal(),
              ElementsAre("fpga-write 0x00000018 66 " + shown + "+2",
                          "card-write 1 0 3 0x02000001 1 10 failed", "shell sync", "clock-set 12"));
}

TEST_F(BoardTest, ATransferIsOfOnePieceForWhoeverReads) {
  start("journal = off\n");
  constexpr std::size_t kBytes = 4096;
  constexpr int kWrites = 1000;
  constexpr int kReads = 200;
  const struct {
    const char* name;
    int (*write)(const Bytes& bytes);
    Bytes (*read)();
  } places[] = {{"bus", [](const Bytes& bytes) { return writeFpga(0xC00000, bytes); },
                 [] { return readFpga(0xC00000, kBytes); }},
                {"card", [](const Bytes& bytes) { return writeCard(1, 0, 0, 0x03000000, bytes); },
                 [] { return readCard(1, 0, 0, 0x03000000, kBytes); }}};
  for (const auto& [name, write, read] : places) {
    std::atomic<bool> done = false;
    std::atomic<int> reads = 0;
    std::thread peer([&, put = write] {
      for (int i = 0; i < kWrites || reads < kReads; ++i) put(Bytes(kBytes, static_cast<unsigned char>(i)));
      done = true;
    });
    int torn = 0;
    for (; !done; ++reads) {
      const Bytes bytes = read();
      torn += bytes.size() != kBytes || bytes != Bytes(kBytes, bytes[0]) ? 1 : 0;
    }
    peer.join();
    EXPECT_EQ(torn, 0) << name;
  }
}

TEST_F(BoardTest, TheJournalHasTheOrderInWhichThreadsReachedTheBoard) {
  start();
  constexpr int kWrites = 100;
  const auto work = [](unsigned char mark) {
    for (int i = 0; i < kWrites; ++i) {
      writeFpga(0x100, {mark});
      writeCard(1, 0, 0, 0x02000001, {mark});
      readCard(1, 0, 0, 0x02000001, 1);
    }
  };
  std::vector<std::thread> threads;
  for (unsigned char mark = 0x10; mark < 0x14; ++mark) threads.emplace_back(work, mark);
  for (auto& thread : threads) thread.join();
  std::string lastOnBus;
  std::string lastOnCard;
  const auto lines = journal();
  EXPECT_EQ(lines.size(), threads.size() * kWrites * 2);
  for (const std::string& line : lines) {
    EXPECT_THAT(line,
                testing::MatchesRegex("(fpga-write 0x00000100 1|card-write 1 0 0 0x02000001 1) 1[0-3]"));
    (line.front() == 'f' ? lastOnBus : lastOnCard) = line.substr(line.size() - 2);
  }
  EXPECT_EQ(lastOnBus, "1" + std::to_string(fpga(0x100, 1)[0] - 0x10));
  EXPECT_EQ(lastOnCard, "1" + std::to_string(readCard(1, 0, 0, 0x02000001, 1).at(0) - 0x10));
}

}  // namespace
