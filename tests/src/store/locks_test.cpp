// The store's two locks: who takes which, and what would go wrong without.
#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string_view>

#include "board_journal.h"
#include "calc/colourrecords.h"
#include "calc/screenrecord.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "process/featurewrite.h"
#include "process/inputSource.h"
#include "process/returnfactory.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "proto/store/porttables.h"
#include "proto/store/smarttable.h"
#include "store_fixture.h"
#include "stub/mcuimdthread.h"
#include "stub/stubutil.h"

namespace ORVE_MCUC {
namespace {

struct Operation {
  const char* name;
  std::function<void()> run;
};

class LocksTest : public StoreFixture {
 protected:
  LocksTest() : StoreFixture("journal = all\n") {}
  ~LocksTest() override { simboard::onJournal(nullptr); }
  static bool imageIsFree() {
    const bool isFree = store().imageLock.TryLock() == 0;
    if (isFree) store().imageLock.UnLock();
    return isFree;
  }
  static SmartScreen wall(uint16_t columns) { return {1, columns, 1, 0, {}}; }
  void storeRecord(const SmartScreen& screen) const {
    Bytes record(shortcut::kUsedSize);
    shortcut::putSmartScreen(std::span<uint8_t, shortcut::kUsedSize>(record), screen);
    board.setFlash(flash::kShortcutConfig, record);
  }
  static std::vector<Operation> configurations() {
    return {
        {"save", [] { store().SaveParaToFlash(1); }},
        {"save of the hardware page", [] { store().SaveParaToFlash(0); }},
        {"restore", [] { store().RestoreFPGA(); }},
        {"roles", [] { store().SendMasterOrBackup(1); }},
        {"size", [] { store().CalculateParaGetSreenSize(ByteImage<1024>{}); }},
        {"mapping", [] { store().CalculateParaOfSenderInMosaicMode(ByteImage<1024>{}, {}); }},
        {"advanced size", [] { store().AdvCalcParaGetSreenSize(AdvancedScreen{}); }},
        {"advanced mapping", [] { store().AdvCalcParaOfSenderInMosaicMode(AdvancedScreen{}); }},
        {"calculation", [] { Tprocess::CalculateParaOfSenderHandler(); }},
        {"save handler", [] { Tprocess::Sprocess_SaveSendCardPara(0, nullptr); }},
        {"software table",
         [] {
           queued(&Tprocess::Sprocess_DoSoftwareTable, {0, 0, 6, 5, 1, 0, 9});
         }},
        {"submission",
         [] {
           std::array<char, 32> record{};
           Tprocess::Sprocess_CalculateParaOfSender(record.size(), record.data());
         }},
        {"advanced submission",
         [] {
           char one = 1;
           Tprocess::Sprocess_AdvCalcParaOfSender(1, &one);
         }},
        {"feature write", [] { DoWriteFeatureInfo(reg::ofFeature(0x30), Bytes{1}); }},
        {"screen information",
         [] {
           queued(&Tprocess::Sprocess_DoScreenInfoEcho, {8, 0, 0x10, 2, 1, 0, 7});
         }},
        {"HDR", [] { queued(&Tprocess::Sprocess_HDR10, Bytes(HDRParaData::kSize)); }},
        {"reload", [] { Tprocess::Sprocess_ReloadSendCardProgram(0, nullptr); }},
        {"load of the FPGA", [] { StubUtil::getInstance()->channel().bringUp(); }},
        {"request of a reset", [] { queued(&Tprocess::Sprocess_ReturnFactorySet, {0}); }},
        {"factory reset", [] { ReturnFactory(0); }},
    };
  }
  static void queued(int (*handler)(int, char*), Bytes payload) {
    handler(static_cast<int>(payload.size()), reinterpret_cast<char*>(payload.data()));
  }
};

TEST_F(LocksTest, CalculationsSavesAndRestoresWaitForOneAnotherBeforeTheyTouchAnything) {
  for (const Operation& each : configurations()) {
    const auto before = board.journal();
    std::vector<std::string> early;
    EXPECT_TRUE(waitsFor(store().m_mutex, each.run, [&] { early = board.journal(); })) << each.name;
    EXPECT_EQ(early, before) << each.name;
  }
}

TEST_F(LocksTest, WhatTheTickTellsWaitsForNoConfiguration) {
  daemon.connect();
  store().CalculateParaHandlerCnt = 1;  // which has not rested yet
  EXPECT_FALSE(waitsFor(
      store().m_mutex, [this] { daemon.tick(); }, [] {}));
  EXPECT_EQ(store().GigaPhyLinkSta, 0x000F);
  EXPECT_THAT(daemon.pushes(), testing::SizeIs(testing::Ge(4U)));
}

// The bus access that somebody makes for an image is held in its middle: it fails once, and waits to be tried
// again.
TEST_F(LocksTest, WhileABusAccessForAnImageIsUnderWayNobodyElseTouchesOne) {
  constexpr TestBoard::Time kBusPause{100};
  static Bytes bytes{5};
  static const FeatureDraft kDraft = [] {
    FeatureDraft draft;
    draft.put(0x18, 5);
    return draft;
  }();
  struct Access {
    const char* name;
    Fault bus;
    void (*run)();
  };
  const std::vector<Access> accesses{
      {"writeThrough", Fault::FpgaWrite,
       [] { writeThrough(store(), store().SendParameterReg, 0x18, 0x18, bytes); }},
      {"draft to the FPGA", Fault::FpgaWrite, [] { putFeature(store(), kDraft, 0x18, 1, "test"); }},
      {"writeImage", Fault::FpgaWrite, [] { writeImage(store(), store().SendParameterReg, 0x18, 1, 0x18); }},
      {"readThrough", Fault::FpgaRead,
       [] { readThrough(store(), store().SendParameterReg, 0x18, 0x18, bytes); }},
      {"draft", {}, [] { putFeature(store(), kDraft); }},
      {"putBytes", {}, [] { putBytes(store(), store().SendParameterReg, 0x18, bytes); }},
      {"snapshot", {}, [] { snapshot(store(), store().SendParameterReg, 0x18, bytes); }},
  };
  board.takeTime(kBusPause);
  for (std::size_t i = 0; i < 4; ++i) {
    for (const Access& other : accesses) {
      SCOPED_TRACE(std::string(accesses[i].name) + ", then " + other.name);
      board.setFpga(0x18, {5});
      bytes = {5};
      board.failNext(accesses[i].bus, 1);
      std::thread holding(accesses[i].run);
      ASSERT_TRUE(board.awaitHeld(1));
      EXPECT_TRUE(comesToWait(other.run, [&] { board.advance(kBusPause); }));
      holding.join();
    }
  }
}

TEST_F(LocksTest, WhoWaitsForAReadOfAnotherThreadKeepsNobodyFromTheImage) {
  constexpr TestBoard::Time kBusPause{100};
  daemon.connect();
  const std::vector<Operation> readers{
      {"readThrough",
       [] {
         std::array<uint8_t, 1> room{};
         EXPECT_EQ(readThrough(store(), store().SendParameterReg, 0x18, 0x18, room), 0);
       }},
      {"push", [] { store().SendMStoLSD1_4(); }},
      {"request", [this] { EXPECT_EQ(daemon.read(reg::kFeature, 512).data.size(), 512U); }},
  };
  board.takeTime(kBusPause);
  for (const Operation& each : readers) {
    board.failNext(Fault::FpgaRead, 1);
    std::thread reading([] {
      std::array<uint8_t, 1> room{};
      EXPECT_EQ(readFpga(0x18, room), 0);
    });
    ASSERT_TRUE(board.awaitHeld(1));
    EXPECT_TRUE(comesToWait(each.run, [&] {
      EXPECT_TRUE(imageIsFree()) << each.name;
      board.advance(kBusPause);
    })) << each.name;
    reading.join();
  }
}

TEST_F(LocksTest, TheImageIsFreeWhileFlashIsWritten) {
  int writes = 0;
  for (const Operation& each : configurations()) {
    uint32_t n = 1;
    do {
      daemon.restart();
      // At each flash write in turn somebody looks, on the thread that writes.
      simboard::onOutage([&](simboard::Outage) {
        ++writes;
        EXPECT_TRUE(imageIsFree()) << each.name << ", write " << n;
      });
      board.cutPower({n++});
      each.run();
    } while (!board.hasPower());
  }
  simboard::onOutage([](simboard::Outage) {});
  EXPECT_GT(writes, 40);
}

// At each of these calls somebody looks, on the thread that calls.
TEST_F(LocksTest, TheImageIsFreeDuringShellCommandsCardAccessesAndSends) {
  static std::map<std::string, int, std::less<>> calls;
  calls = {{"shell", 0}, {"card-read", 0}, {"card-write", 0}, {"send", 0}};
  daemon.connect();
  simboard::onJournal([](std::string_view line) {
    const auto call = calls.find(line.substr(0, line.find(' ')));
    if (call == calls.end()) return;
    ++call->second;
    EXPECT_TRUE(imageIsFree()) << line;
  });
  daemon.tick(5);
  daemon.ask({.deviceType = 1, .address = 0x02000017, .length = 4});
  daemon.ask({.deviceType = 1, .code = peer::kWrite, .address = 0x02000001, .length = 1, .data = {9}});
  for (const Operation& each : configurations()) each.run();
  for (const auto& [kind, count] : calls) EXPECT_GT(count, 0) << kind;
}

class ReadsInBetween : public LocksTest {
 protected:
  struct Outcome {
    Bytes fpga, feature, size;
    bool operator==(const Outcome&) const = default;
  };
  Outcome outcome() const {
    return {board.fpga(0, 512), board.flash(flash::kFeature, 512), board.flash(flash::kScreenSize, 8)};
  }
  // A screen with an offset, and image and FPGA of one mind; with an output size, or none yet.
  void prepare(bool withOutput) const {
    Bytes registers(fpga::kMirrorEnd);
    putLe16(registers, fpga::kScreenWidth, 1920);
    putLe16(registers, fpga::kScreenHeight, 1080);
    putLe16(registers, fpga::kScreenOffsetX, 16);
    putLe16(registers, fpga::kScreenOffsetY, 8);
    putLe16(registers, fpga::kMappedWidth, 1920);
    if (withOutput) putLe16(registers, fpga::kOutputWidth, 1936);
    if (withOutput) putLe16(registers, fpga::kOutputHeight, 1088);
    registers[fpga::kBackupMark] = 0xA5;
    board.setFpga(0, registers);
    readAll();
    putBytes(store(), store().SendParameterReg, fpga::kMirrorEnd, Bytes{0, 0, 0, 0, 0, 0, 0, 0, 1});
  }
  // As a peer does who wants to know everything.
  static void readAll() {
    std::array<uint8_t, fpga::kMirrorEnd> room{};
    EXPECT_EQ(readThrough(store(), store().SendParameterReg, 0, 0, room), 0);
  }
  std::size_t calls(const std::string& kind, const Operation& each) const {
    std::streamoff seen = 0;
    static_cast<void>(board.journal(seen));
    each.run();
    const auto lines = board.journal(seen);
    return static_cast<std::size_t>(
        std::ranges::count_if(lines, [&](const std::string& line) { return line.starts_with(kind); }));
  }
  static std::function<void()> write(uint32_t at, const Bytes& data) {
    return [=] { DoWriteFeatureInfo(reg::ofFeature(at), data); };
  }
};

// Each flash write and each bus write in turn is held in its middle, where it fails once.
TEST_F(ReadsInBetween, WhatIsDecidedReachesFlashAndFpgaWhateverPeersReadMeanwhile) {
  constexpr TestBoard::Time kBusPause{100};
  storeRecord(wall(3));
  const std::vector<Operation> operations{
      {"bypass opened", write(fpga::kOffsetMode, {0xA5})},
      {"bypass closed", write(fpga::kOffsetMode, {0})},
      {"offset of LSD", write(fpga::kSignedOffsetX, {0xF0, 0xFF, 0xFF, 0xFF, 0xF8, 0xFF, 0xFF, 0xFF})},
      {"offset of a tool", write(fpga::kScreenOffsetX, {4, 0, 5, 0})},
      {"screen width", write(fpga::kScreenWidth, {0, 5, 0xD0, 2})},
      {"screen height", write(fpga::kScreenHeight, {0xD0, 2})},
      {"mapped width", write(fpga::kMappedWidth, {0, 5})},
      {"time-out", write(fpga::kSerialTimeout, {33})},
      {"role", write(fpga::kBackupMark, {0x5A})},
      {"submission",
       [] {
         std::array<uint8_t, shortcut::kUsedSize> record{};
         shortcut::putSmartScreen(record, wall(3));
         queued(&Tprocess::Sprocess_CalculateParaOfSender, {record.begin(), record.end()});
       }},
      {"mapping", [] { Tprocess::CalculateParaOfSenderHandler(); }},
      {"advanced submission",
       [] {
         char one = 1;
         Tprocess::Sprocess_AdvCalcParaOfSender(1, &one);
       }},
  };
  board.takeTime(kBusPause);
  for (const bool withOutput : {true, false}) {
    for (const Operation& each : operations) {
      each.run();  // what is done for new values only is done
      for (const auto& [kind, words] :
           {std::pair{Fault::FlashWrite, "flash-write"}, {Fault::FpgaWrite, "fpga-write"}}) {
        prepare(withOutput);
        const std::size_t count = calls(words, each);
        const Outcome undisturbed = outcome();
        for (uint32_t n = 1; n <= count; ++n) {
          SCOPED_TRACE(each.name + (", " + std::string(words)) + " " + std::to_string(n));
          prepare(withOutput);
          board.failCall(kind, n);
          std::thread working(each.run);
          ASSERT_TRUE(board.awaitHeld(1));
          if (imageIsFree()) readAll();
          board.advance(kBusPause);
          working.join();
          EXPECT_EQ(outcome(), undisturbed);
        }
      }
    }
  }
}

TEST_F(LocksTest, WhatIsReadOfAnImageIsOfOneMoment) {
  daemon.connect();
  store().SendParameterReg[fpga::kOffsetMode] = 1;
  // With the image held by this thread everything changes, a field at a time, before the reader gets on.
  Bytes quality;
  EXPECT_TRUE(waitsFor(
      store().imageLock, [&] { quality = daemon.read(reg::kPictureQuality, 6).data; },
      [] {
        for (const auto field : {para::PbufContrast, para::PbufSaturation, para::PbufHue})
          ParaTable.putLe16(field, 7);
      }));
  EXPECT_EQ(quality, (Bytes{7, 0, 7, 0, 7, 0}));
  EXPECT_TRUE(waitsFor(
      store().imageLock,
      [&] {
        daemon.write(reg::ofFeature(fpga::kScreenOffsetX), {4, 0});
      },
      [] { store().SendParameterReg.putLe16(fpga::kScreenOffsetY, 9); }));
  const auto pushes = daemon.pushes();
  ASSERT_THAT(pushes, testing::SizeIs(1));
  EXPECT_EQ(pushes[0].data, (Bytes{0xFC, 0xFF, 0xFF, 0xFF, 0xF7, 0xFF, 0xFF, 0xFF}));
  EXPECT_TRUE(waitsFor(
      store().imageLock, [] { Tprocess::Sprocess_SaveSendCardPara(0, nullptr); },
      [] { store().ScreenParaReg[1] = 5; }));
  EXPECT_EQ(board.flash(flash::kScreenPara, 2), (Bytes{0, 5}));
}

TEST_F(LocksTest, AColourRecordAndItsCalculationKeepASaveWaiting) {
  constexpr TestBoard::Time kBusPause{100};
  const std::vector<Operation> colours{
      {"HDR10", [] { queued(&Tprocess::Sprocess_HDR10, Bytes(HDRParaData::kSize)); }},
      {"HLG", [] { queued(&Tprocess::Sprocess_HLG, Bytes(HDRParaData::kSize)); }},
      {"picture quality", [] { queued(&Tprocess::Sprocess_PictureQualityCal, Bytes(CSCParaData::kSize)); }},
  };
  board.takeTime(kBusPause);
  for (const Operation& each : colours) {
    board.failNext(Fault::FpgaWrite, 1);
    std::thread calculating(each.run);
    ASSERT_TRUE(board.awaitHeld(1));
    EXPECT_TRUE(comesToWait([] { store().SaveParaToFlash(1); }, [&] { board.advance(kBusPause); }))
        << each.name;
    calculating.join();
  }
}

// In front of the FPGA the image would lose the new bytes to a read.
TEST_F(LocksTest, ThePatternsImageIsNeverAheadOfTheFpga) {
  constexpr TestBoard::Time kBusPause{100};
  board.takeTime(kBusPause);
  board.failNext(Fault::FpgaRead, 1);
  std::atomic<bool> loaded{false};
  std::thread loading([&] {
    queued(&Tprocess::Sprocess_ScreenPatternGen, {0x0E, 0, 1, 0x12, 1, 0, 9});
    loaded = true;
  });
  ASSERT_TRUE(board.awaitHeld(1));
  EXPECT_EQ(store().HardwareScreenGenReg[0x0E], board.fpga(fpga::kScreenPatternGen + 0x0E, 1)[0]);
  while (!loaded) board.advance(kBusPause);
  loading.join();
  EXPECT_EQ(board.fpga(fpga::kScreenPatternGen + 0x0E, 1), Bytes{9});
  EXPECT_EQ(store().HardwareScreenGenReg[0x0E], 9);
}

TEST_F(LocksTest, ACalculationUsesTheRecordThatIsThereWhenItsTurnComes) {
  storeRecord(wall(2));
  const auto latest = [&] {
    storeRecord(wall(3));
    putScreen(MyTempParaTable, MyTempParaCharTable, wall(3));
  };
  EXPECT_TRUE(waitsFor(store().m_mutex, &Tprocess::CalculateParaOfSenderHandler, latest));
  EXPECT_EQ(store().SendParameterReg.le16(fpga::kScreenWidth), 3 * 128);
}

// A restore would end the reset.
TEST_F(LocksTest, AResetThatIsRequestedWhileARestoreWaitsIsNotLost) {
  for (const auto& restore :
       {Operation{"reload", [] { Tprocess::Sprocess_ReloadSendCardProgram(0, nullptr); }},
        Operation{"load of the FPGA", [this] { daemon.bringUp(); }}}) {
    EXPECT_TRUE(waitsFor(store().m_mutex, restore.run, [] { store().request(1); })) << restore.name;
    EXPECT_EQ(store().RebootRF, ResetState::kRequested) << restore.name;
    store().RebootRF = ResetState::kIdle;
  }
}

TEST_F(LocksTest, ACalculationThatIsTakenBackBeforeItsTurnIsLeftOut) {
  store().CalculateParaHandlerCnt = 1;
  daemon.tick();
  EXPECT_TRUE(waitsFor(
      store().m_mutex, [this] { daemon.tick(); }, [] { store().CalculateParaHandlerCnt = 0; }));
  EXPECT_EQ(store().LEDConfigStatus, 0);
}

TEST_F(LocksTest, AnAdvancedConfigurationIsTakenOnceForBothSteps) {
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    Bytes block(shortcut::kPortSize);
    block[shortcut::kPortRowsAt] = 2;
    block[shortcut::kPortColumnsAt] = 3;
    board.setFlash(
        flash::kShortcutConfig + static_cast<uint32_t>(shortcut::kPortsAt + shortcut::kPortSize * port),
        block);
  }
  std::atomic<bool> done{false};
  std::thread peer([&] {
    while (!done) {
      TempAdvCfgPortRow.fill(7);
      TempAdvCfgPortCol.fill(5);
      TempAdvCfgPortX.fill(9);
      TempAdvPortCM.fill(1);
    }
  });
  for (int i = 0; i < 5; ++i) {
    char one = 1;
    Tprocess::Sprocess_AdvCalcParaOfSender(1, &one);
    EXPECT_EQ(board.flash(flash::kScreenSize, 8), (Bytes{0x80, 1, 0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(board.fpga(fpga::portWindow(9), 8), (Bytes{0x80, 1, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(board.fpga(cardCountOnFpga(9), 2), (Bytes{6, 0}));
  }
  done = true;
  peer.join();
}

// The first item's handler is held in the pause behind a new network address.
TEST_F(LocksTest, AnItemOfWorkWaitsForTheOneBefore) {
  constexpr TestBoard::Time kSettling{10'000};
  const auto handle = [](enum_Process_Key_Table key, const Bytes& payload) {
    MCUProcessDataBlock item;
    item.m_key = key;
    item.setData(reinterpret_cast<const char*>(payload.data()), static_cast<int>(payload.size()));
    Tprocess_ctl::getInstance()->onProcessDealwith(&item);
  };
  board.takeTime(kSettling);
  std::thread first([&] { handle(HwBasicinfoKey, {0x3D, 0, 0, 0, 7, 0, 0, 2, 3, 4, 5, 6, 7}); });
  ASSERT_TRUE(board.awaitHeld(1));
  EXPECT_TRUE(comesToWait(
      [&] {
        handle(DoBackupInfoKey, {0, 0, 0x30, 2, 1, 0, 9});
      },
      [&] { board.advance(kSettling); }));
  first.join();
}

class InputLocksTest : public StoreFixture {
 protected:
  InputLocksTest() : StoreFixture("input = 0x10 dvi\n") { inputs().InputBoardInit(); }
  static InputSource& inputs() { return *InputSource::getInstance(); }
};

// Somebody loads an EDID, which takes as long as nobody reads the pipe that stands in its file's place.
TEST_F(InputLocksTest, WhileAnEdidIsLoadedTheListsAreOfOnePieceForAll) {
  const std::string edid = board.file("hw/edid-16.bin");
  const std::string pipe = board.file("pipe");
  const std::vector<Operation> others{
      {"look for boards", [] { inputs().InputBoardInit(); }},
      {"source", [] { inputs().GetSourceByGroup(0); }},
      {"name", [] { inputs().name(0); }},
      {"number", [] { inputs().sources(); }},
      {"read",
       [] {
         EdidBytes bytes{};
         inputs().ReadEDIDInfo(0, bytes);
       }},
      {"load", [] { inputs().EDIDSetByMode(0, 800, 600, 6000); }},
  };
  for (const Operation& other : others) {
    ASSERT_EQ(mkfifo(edid.c_str(), 0600), 0);
    int reader = -1;
    EXPECT_TRUE(comesToWait(
        [] { inputs().EDIDSetByMode(0, 1920, 1080, 6000); },
        [&] {
          std::filesystem::rename(edid, pipe);
          EXPECT_TRUE(comesToWait(other.run, [&] { reader = open(pipe.c_str(), O_RDONLY); })) << other.name;
        }));
    close(reader);
    std::filesystem::remove(edid);
  }
}

TEST(ResetStateTest, WhoSeesARequestSeesItsMode) {
  for (int i = 0; i < 300; ++i) {
    ResetState state;
    std::thread requester([&] { state.request(2); });
    while (state.RebootRF != ResetState::kRequested) std::this_thread::yield();
    EXPECT_EQ(state.ResetMode, 2);
    requester.join();
  }
}

}  // namespace
}  // namespace ORVE_MCUC
