// A board that fails while the daemon starts: it comes up all the same, says what failed, and does not
// replace what it could not read.
#include <algorithm>

#include "daemontest.h"

namespace {

using Bytes = peer::Bytes;
using Fault = TestBoard::Fault;

constexpr uint32_t kAlways = TestBoard::kEveryCall;

struct Failing {
  Fault kind;
  uint32_t calls;
};

enum Stored : unsigned { Serial = 1, Mark = 2, Page = 4, InFlash = 7, SerialText = 8, Version = 16 };
constexpr unsigned kAll = 31;

struct FaultyStart {
  const char* name;
  std::vector<Failing> faults;
  unsigned stored;                  // what has reached flash and environment all the same
  std::vector<const char*> logged;  // in this order
  std::vector<const char*> notLogged;
};

constexpr char kSerialAbsent[] =
    "Error === SNTransfer ===The SN_ADDR at env is not exist, set the default SN_ADDR now. ";
constexpr char kTransferred[] =
    "Info ================================ Finish SN transfer =============================";
constexpr char kRestored[] =
    "Info ========================== Finish restore data from flash =======================";
constexpr char kReportFinished[] =
    "Info =============================== FPGAReport_init Finish ============================= ";
constexpr char kNotOpened[] = "Error === SNTransfer ===Error when openning env!";
constexpr char kSerialNotSet[] = "Error === SNTransfer ===setenv faild";
constexpr char kVersionNotSet[] = "Info setenv faild";
constexpr char kPageUnread[] = "Error === ReadHardwareInfo ===";
constexpr char kBusNotWritten[] = "Error >>>>>>>>>>>>>>>>>>>>> FPGA Write Fail<<<<<<<<<<<<<<<<<<<";
constexpr char kBusNotRead[] = "Error >>>>>>>>>>>>>>>>>>>>> FPGA Read Fail<<<<<<<<<<<<<<<<<<<";
constexpr char kFpgaUp[] = "Info >>>>>>>>>>>>>>>>>>>>>Read FPGA Status Up<<<<<<<<<<<<<<<<<<<";
constexpr char kFpgaDown[] = "Info >>>>>>>>>>>>>>>>>>>>>Read FPGA Status Down<<<<<<<<<<<<<<<<<<<";
constexpr char kReportNotSet[] = "Error === Write reprot para Reg failed! ret = -1";
constexpr char kReportNotEnabled[] = "Error === Write reprot enable Reg failed! ret = -1";

const FaultyStart kStarts[] = {
    {"NothingFails",
     {},
     kAll,
     {kSerialAbsent},
     {kNotOpened, kSerialNotSet, kVersionNotSet, kPageUnread, kBusNotWritten, kBusNotRead}},
    {"TheEnvironmentNeverOpens",
     {{Fault::EnvOpen, kAlways}},
     Mark | Page,
     {kNotOpened},
     {kVersionNotSet, kSerialAbsent, kTransferred}},
    {"TheEnvironmentOpensTheSecondTime",
     {{Fault::EnvOpen, 1}},
     Mark | Page | Version,
     {kNotOpened},
     {kVersionNotSet}},
    {"TheEnvironmentOpensTheFourthTime",
     {{Fault::EnvOpen, 3}},
     Mark | Page,
     {kNotOpened},
     {kVersionNotSet, "Info openenv faild"}},
    {"TheEnvironmentIsNeverSet",
     {{Fault::EnvSet, kAlways}},
     InFlash,
     {kSerialNotSet, kTransferred, kVersionNotSet},
     {kNotOpened}},
    {"TheEnvironmentIsSetTheSecondTime",
     {{Fault::EnvSet, 1}},
     InFlash | Version,
     {kSerialNotSet},
     {kVersionNotSet}},
    {"TheFlashIsNeverRead",
     {{Fault::FlashRead, kAlways}},
     kAll & ~(Mark | Page),
     {kRestored, kPageUnread},
     {}},
    {"TheFlashIsReadTheThirdTime", {{Fault::FlashRead, 2}}, kAll, {}, {kPageUnread}},
    {"TheFlashIsReadTheFourthTime", {{Fault::FlashRead, 3}}, kAll & ~(Mark | Page), {kPageUnread}, {}},
    {"TheFlashIsNeverWritten", {{Fault::FlashWrite, kAlways}}, SerialText | Version, {}, {}},
    {"TheFlashIsWrittenTheFourthTime", {{Fault::FlashWrite, 3}}, kAll & ~Serial, {}, {}},
    {"TheFpgaIsNeverWritten",
     {{Fault::FpgaWrite, kAlways}},
     kAll,
     {kBusNotWritten, kFpgaUp, kReportNotSet, kBusNotWritten, kFpgaUp, kReportNotEnabled, kReportFinished},
     {kFpgaDown}},
    {"TheFpgaIsWrittenTheFourthTime",
     {{Fault::FpgaWrite, 3}},
     kAll,
     {kBusNotWritten, kFpgaUp, kReportNotSet, kReportFinished},
     {kReportNotEnabled, kFpgaDown}},
    {"TheFpgaIsNeverRead", {{Fault::FpgaRead, kAlways}}, kAll, {kBusNotRead, kFpgaUp}, {kFpgaDown}},
    {"NothingWorks",
     {{Fault::EnvOpen, kAlways},
      {Fault::EnvSet, kAlways},
      {Fault::FlashRead, kAlways},
      {Fault::FlashWrite, kAlways},
      {Fault::FpgaRead, kAlways},
      {Fault::FpgaWrite, kAlways}},
     0,
     {kNotOpened, kPageUnread},
     {}},
};

/** The hardware page and the environment are those of before each start; the rest of the board stays. */
class StartUp : public DaemonTest {
 protected:
  static constexpr uint32_t kPageAt = 0x1000;
  static constexpr char kEnvironment[] = "ver_rootfs=V2.7.1\n";

  explicit StartUp(const std::string& conf = "fpga_autoload = no\n") : DaemonTest(conf) {
    daemon.traceStarts(3);
  }
  void startWith(const std::vector<Failing>& faults) {
    daemon.board.clearFaults();
    daemon.board.setFlash(kPageAt, counting(256));
    daemon.prepare("etc/sysconf.env", kEnvironment);
    for (const auto& [kind, calls] : faults) daemon.board.failNext(kind, calls);
    daemon.trace();
    daemon.powerOn();
  }

  static Bytes page(unsigned stored) {
    Bytes bytes = counting(256);
    const auto put = [&](std::ptrdiff_t at, const Bytes& part) {
      std::copy(part.begin(), part.end(), bytes.begin() + at);
    };
    if ((stored & Serial) != 0) put(0x16, peer::fromHex("13030D00FFFFFFFF"));
    if ((stored & Mark) != 0) put(0x1F, {0x55});
    if ((stored & Page) != 0) put(2, {20, 17, 2, 0, 168, 0, 4});
    return bytes;
  }
  static std::string environment(unsigned stored) {
    return std::string((stored & SerialText) != 0 ? "device_sn=13030d00ffffffff\n" : "") +
           ((stored & Version) != 0 ? "ver_parlend=V2.7.1\n" : "") + kEnvironment;
  }
  void expectStored(unsigned stored) const {
    EXPECT_EQ(peer::toHex(flash(kPageAt, 256)), peer::toHex(page(stored)));
    EXPECT_EQ(daemon.board.text("etc/sysconf.env"), environment(stored));
  }

  /** Lines of the trace begin with these texts, in this order, and none with the others. */
  void expectLogged(const std::vector<const char*>& texts, const std::vector<const char*>& others = {}) {
    const std::vector<std::string> lines = daemon.trace();
    auto at = lines.begin();
    for (const char* text : texts) {
      at = std::find_if(at, lines.end(), [&](const std::string& line) { return line.starts_with(text); });
      ASSERT_NE(at, lines.end()) << "not in the trace, or not in this place: " << text;
      ++at;
    }
    for (const char* text : others)
      EXPECT_THAT(lines, testing::Not(testing::Contains(testing::StartsWith(text))));
  }

  /** Calls of the start at an address that failed and that did not. */
  using Calls = std::pair<unsigned, unsigned>;
  Calls calls(const std::string& callAndAddress) const {
    Calls count;
    for (const std::string& line : daemon.board.journal())
      if (line.starts_with(callAndAddress + ' ')) ++(line.ends_with(" failed") ? count.first : count.second);
    return count;
  }
};

TEST_F(StartUp, WithFaultsTheDaemonComesUpAndKeepsWhatItCouldNotRead) {
  for (const FaultyStart& each : kStarts) {
    SCOPED_TRACE(each.name);
    startWith(each.faults);
    expectStored(each.stored);
    for (const uint32_t address : {0x02300000U, 0x00000000U, 0xF0C0FFE0U}) EXPECT_EQ(read(address, 8).ack, 0);
    expectLogged(each.logged, each.notLogged);

    daemon.board.clearFaults();
    EXPECT_THAT(write(0x02300000, counting(8)), CarriesNothing());
    EXPECT_TRUE(flashHolds(0xB98000, counting(8)));
    EXPECT_THAT(read(0x02300000, 8), Carries(counting(8)));
    EXPECT_THAT(write(0xF0C0FFE0, counting(8)), CarriesNothing());
    EXPECT_THAT(read(0xF0C0FFE0, 8), Carries(counting(8)));
  }
}

TEST_F(StartUp, ATransferIsTriedThreeTimes) {
  startWith({{Fault::FlashWrite, 3 + 2}, {Fault::FpgaWrite, 2}});
  EXPECT_EQ(calls("flash-write 0x00001016"), Calls(3, 0));
  EXPECT_EQ(calls("flash-write 0x0000101f"), Calls(2, 1));
  EXPECT_EQ(calls("flash-write 0x00001000"), Calls(0, 1));
  EXPECT_EQ(calls("fpga-write 0x00100071"), Calls(2, 1));
  EXPECT_EQ(calls("fpga-write 0x00100070"), Calls(0, 1));
}

TEST_F(StartUp, TheNextMakesUpForWhatFailed) {
  startWith({{Fault::FlashRead, kAlways}, {Fault::EnvSet, kAlways}});
  expectStored(Serial);
  daemon.board.clearFaults();
  daemon.restart();
  expectStored(kAll);
}

class StartUpWithADeadFpga : public StartUp {
 protected:
  StartUpWithADeadFpga() : StartUp("fpga_autoload = no\nfpga_status = down\n") {}
};

TEST_F(StartUpWithADeadFpga, LeavesItAloneAndServesTheRest) {
  startWith({{Fault::FpgaWrite, kAlways}});
  expectLogged({kBusNotWritten, kFpgaDown, kReportNotSet, kReportNotEnabled});
  EXPECT_EQ(calls("fpga-write 0x00100071").first, 3U);
  EXPECT_EQ(calls("fpga-write 0x00100070").first, 0U);
  daemon.board.clearFaults();
  EXPECT_THAT(write(0xF0C0FFE0, {9}), CarriesNothing());
  EXPECT_THAT(read(0xF0C0FFE0, 1), Carries(zeros(1)));
  EXPECT_EQ(fpga(0x00C0FFE0, 1), Bytes{0});
  EXPECT_THAT(write(0x02300000, counting(8)), CarriesNothing());
  EXPECT_TRUE(flashHolds(0xB98000, counting(8)));
}

}  // namespace
