// A board that fails while the daemon starts: it comes up all the same, says what failed, and does not
// replace what it could not read.
#include <algorithm>

#include "system_test.h"

using peer::Bytes;

namespace {

struct Fault {
  const char* kind;
  uint32_t count;
};

enum Stored : unsigned { Serial = 1, Mark = 2, Page = 4, InFlash = 7, SerialText = 8, Version = 16 };
constexpr unsigned kAll = 31;

struct FaultyStart {
  const char* name;
  std::vector<Fault> faults;
  unsigned stored;                  // what has reached flash and environment all the same
  std::vector<const char*> logged;  // in this order
  std::vector<const char*> notLogged;
};
void PrintTo(const FaultyStart& start, std::ostream* out) {
  *out << start.name;
}

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
constexpr char kFinished[] =
    "Info ================================= Finish main init ==============================";

const FaultyStart kStarts[] = {
    {"NothingFails",
     {},
     kAll,
     {kSerialAbsent, kFinished},
     {kNotOpened, kSerialNotSet, kVersionNotSet, kPageUnread, kBusNotWritten, kBusNotRead}},
    {"TheEnvironmentNeverOpens",
     {{"env-open", peer::kAlways}},
     Mark | Page,
     {kNotOpened, kFinished},
     {kVersionNotSet, kSerialAbsent, kTransferred}},
    {"TheEnvironmentOpensTheSecondTime",
     {{"env-open", 1}},
     Mark | Page | Version,
     {kNotOpened, kFinished},
     {kVersionNotSet}},
    {"TheEnvironmentOpensTheFourthTime",
     {{"env-open", 3}},
     Mark | Page,
     {kNotOpened, kFinished},
     {kVersionNotSet, "Info openenv faild"}},
    {"TheEnvironmentIsNeverSet",
     {{"env-set", peer::kAlways}},
     InFlash,
     {kSerialNotSet, kTransferred, kVersionNotSet, kFinished},
     {kNotOpened}},
    {"TheEnvironmentIsSetTheSecondTime",
     {{"env-set", 1}},
     InFlash | Version,
     {kSerialNotSet, kFinished},
     {kVersionNotSet}},
    {"TheFlashIsNeverRead",
     {{"flash-read", peer::kAlways}},
     kAll & ~(Mark | Page),
     {kRestored, kPageUnread, kFinished},
     {}},
    {"TheFlashIsReadTheThirdTime", {{"flash-read", 2}}, kAll, {kFinished}, {kPageUnread}},
    {"TheFlashIsReadTheFourthTime", {{"flash-read", 3}}, kAll & ~(Mark | Page), {kPageUnread, kFinished}, {}},
    {"TheFlashIsNeverWritten", {{"flash-write", peer::kAlways}}, SerialText | Version, {kFinished}, {}},
    {"TheFlashIsWrittenTheFourthTime", {{"flash-write", 3}}, kAll & ~Serial, {kFinished}, {}},
    {"TheFpgaIsNeverWritten",
     {{"fpga-write", peer::kAlways}},
     kAll,
     {kBusNotWritten, kFpgaUp, kReportNotSet, kBusNotWritten, kFpgaUp, kReportNotEnabled, kReportFinished},
     {kFpgaDown}},
    {"TheFpgaIsWrittenTheFourthTime",
     {{"fpga-write", 3}},
     kAll,
     {kBusNotWritten, kFpgaUp, kReportNotSet, kReportFinished},
     {kReportNotEnabled, kFpgaDown}},
    {"TheFpgaIsNeverRead", {{"fpga-read", peer::kAlways}}, kAll, {kBusNotRead, kFpgaUp}, {kFpgaDown}},
    {"NothingWorks",
     {{"env-open", peer::kAlways},
      {"env-set", peer::kAlways},
      {"flash-read", peer::kAlways},
      {"flash-write", peer::kAlways},
      {"fpga-read", peer::kAlways},
      {"fpga-write", peer::kAlways}},
     0,
     {kNotOpened, kPageUnread, kFinished},
     {}},
};

class FaultyBoard : public SystemTest {
 protected:
  static constexpr uint32_t kPageAt = 0x1000;
  static constexpr char kEnvironment[] = "ver_rootfs=V2.7.1\n";

  void SetUp() override {
    daemon.prepare("board.conf", conf());
    daemon.prepare("etc/sysconf.env", kEnvironment);
    const Bytes page = counting(256);
    daemon.prepare("hw/flash.bin", std::string(kPageAt, '\0') + std::string(page.begin(), page.end()));
    daemon.prepare("hw/control.bin", std::string(4096, '\0'));
  }
  virtual const char* conf() const { return "fpga_autoload = no\n"; }

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
  std::string environment() const { return contents(daemon.board().directory() / "etc/sysconf.env"); }

  // Whether lines of the trace begin with these texts, in this order.
  testing::AssertionResult logged(const std::vector<const char*>& texts) const {
    const char* missing = "";
    const auto inOrder = [&] {
      const std::vector<std::string> lines = daemon.traceLines();
      auto at = lines.begin();
      return std::all_of(texts.begin(), texts.end(), [&](const char* text) {
        missing = text;
        at = std::find_if(at, lines.end(), [&](const std::string& line) { return line.starts_with(text); });
        return at != lines.end() && (++at, true);
      });
    };
    if (eventually(inOrder)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "not in the trace, or not in this place: " << missing;
  }

  // Journal lines of calls at an address that failed and that did not.
  std::pair<unsigned, unsigned> calls(const std::string& callAndAddress) const {
    std::pair<unsigned, unsigned> count;
    for (const std::string& line : daemon.board().journal())
      if (line.find(' ' + callAndAddress + ' ') != std::string::npos)
        ++(line.ends_with(" failed") ? count.first : count.second);
    return count;
  }
};

class StartUpTest : public FaultyBoard, public testing::WithParamInterface<FaultyStart> {};

TEST_P(StartUpTest, TheDaemonComesUpAndKeepsWhatItCouldNotRead) {
  for (const Fault& fault : GetParam().faults) fail(fault.kind, fault.count);
  start("-debug");
  EXPECT_TRUE(logged({kReportFinished}));
  EXPECT_TRUE(logged(GetParam().logged));
  for (const char* text : GetParam().notLogged)
    EXPECT_THAT(daemon.traceLines(), testing::Not(testing::Contains(testing::StartsWith(text))));

  EXPECT_EQ(peer::toHex(daemon.board().flash(kPageAt, 256)), peer::toHex(page(GetParam().stored)));
  EXPECT_EQ(environment(), environment(GetParam().stored));
  for (const uint32_t address : {0x02300000U, 0x00000000U, 0xF0C0FFE0U}) EXPECT_EQ(read(address, 8).ack, 0);

  for (const Fault& fault : GetParam().faults) fail(fault.kind, 0);
  EXPECT_THAT(write(0x02300000, counting(8)), CarriesNothing());
  EXPECT_TRUE(flashBecomes(0xB98000, counting(8)));
  EXPECT_THAT(read(0x02300000, 8), Carries(counting(8)));
  EXPECT_THAT(write(0xF0C0FFE0, counting(8)), CarriesNothing());
  EXPECT_THAT(read(0xF0C0FFE0, 8), Carries(counting(8)));
}

INSTANTIATE_TEST_SUITE_P(Faults, StartUpTest, testing::ValuesIn(kStarts),
                         [](const auto& row) { return row.param.name; });

TEST_F(FaultyBoard, ATransferAtTheStartIsTriedThreeTimes) {
  using Calls = std::pair<unsigned, unsigned>;
  fail("flash-write", 3 + 2);
  fail("fpga-write", 2);
  start("-debug");
  ASSERT_TRUE(logged({kReportFinished}));
  EXPECT_EQ(calls("flash-write 0x00001016"), Calls(3, 0));
  EXPECT_EQ(calls("flash-write 0x0000101f"), Calls(2, 1));
  EXPECT_EQ(calls("flash-write 0x00001000"), Calls(0, 1));
  EXPECT_EQ(calls("fpga-write 0x00100071"), Calls(2, 1));
  EXPECT_EQ(calls("fpga-write 0x00100070"), Calls(0, 1));
}

TEST_F(FaultyBoard, TheNextStartMakesUpForWhatFailed) {
  fail("flash-read", peer::kAlways);
  fail("env-set", peer::kAlways);
  start();
  EXPECT_EQ(daemon.board().flash(kPageAt, 256), page(Serial));
  daemon.kill();
  fail("flash-read", 0);
  fail("env-set", 0);
  start();
  EXPECT_EQ(peer::toHex(daemon.board().flash(kPageAt, 256)), peer::toHex(page(InFlash)));
  EXPECT_EQ(environment(), environment(kAll));
}

class FaultyDeadFpga : public FaultyBoard {
  const char* conf() const override { return "fpga_autoload = no\nfpga_status = down\n"; }
};

TEST_F(FaultyDeadFpga, AnFpgaFoundDownAtTheStartIsLeftAloneAndTheRestIsServed) {
  fail("fpga-write", peer::kAlways);
  start("-debug");
  ASSERT_TRUE(logged({kReportFinished}));
  EXPECT_TRUE(logged({kBusNotWritten, kFpgaDown, kReportNotSet, kReportNotEnabled}));
  EXPECT_EQ(calls("fpga-write 0x00100071").first, 3U);
  EXPECT_EQ(calls("fpga-write 0x00100070").first, 0U);
  fail("fpga-write", 0);
  EXPECT_THAT(write(0xF0C0FFE0, {9}), CarriesNothing());
  EXPECT_THAT(read(0xF0C0FFE0, 1), Carries(zeros(1)));
  EXPECT_EQ(daemon.board().fpga(0x00C0FFE0, 1), Bytes{0});
  EXPECT_THAT(write(0x02300000, counting(8)), CarriesNothing());
  EXPECT_TRUE(flashBecomes(0xB98000, counting(8)));
}

}  // namespace
