// The store's two locks: who takes which, and what would go wrong without.
#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

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
  EXPECT_FALSE(waitsFor(
      store().m_mutex, [this] { daemon.tick(5); }, [] {}));
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

TEST_F(LocksTest, TheImageIsFreeWhileFlashIsWritten) {
  int writes = 0;
  for (const Operation& each : configurations()) {
    uint32_t n = 1;
    do {
      daemon.restart();
      // At each flash write in turn somebody looks, on the thread that writes.
      simboard::onOutage([&](simboard::Outage) {
        ++writes;
        EXPECT_EQ(store().imageLock.TryLock(), 0) << each.name << ", write " << n;
        store().imageLock.UnLock();
      });
      board.cutPower({n++});
      each.run();
    } while (!board.hasPower());
  }
  simboard::onOutage([](simboard::Outage) {});
  EXPECT_GT(writes, 40);
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
