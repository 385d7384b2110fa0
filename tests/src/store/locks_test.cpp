// The store's two locks: who takes which, and what would go wrong without.
#include "calc/screenrecord.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "store_fixture.h"

namespace ORVE_MCUC {
namespace {

using testing::IsEmpty;

struct Operation {
  const char* name;
  std::function<void()> run;
};

class LocksTest : public StoreFixture {
 protected:
  void SetUp() override { board.start(); }

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
    };
  }
};

TEST_F(LocksTest, CalculationsSavesAndRestoresWaitForOneAnotherBeforeTheyTouchAnything) {
  for (const Operation& each : configurations()) {
    forgetJournal();
    std::vector<std::string> early;
    EXPECT_TRUE(waitsFor(store().m_mutex, each.run, [&] { early = journal(); })) << each.name;
    EXPECT_THAT(early, IsEmpty()) << each.name;
  }
}

TEST_F(LocksTest, WhatTheTickTellsWaitsForNoConfiguration) {
  board.setFpga(0x1F, {0x0F});
  board.setFpga(0x1F2, {0x01});
  const auto watch = [] {
    store().SendRedundStatustoLSD();
    Tprocess_ctl& monitor = *Tprocess_ctl::getInstance();
    monitor.SendRedundtoLSD();
    monitor.SendNetLinktoLSD();
    monitor.SendFiberLinktoLSD();
    monitor.SendFiberBelowLinkStatustoLSD();
    monitor.SendFiberRedundtoLSD();
    monitor.SendFiberToNetStatustoLSD();
    store().GetRecvCardSize_EnvNew();
  };
  EXPECT_FALSE(waitsFor(store().m_mutex, watch, [] {}));
  EXPECT_THAT(pushes(), testing::Contains("1f 0f"));
}

// One thread configures registers while another reads them back: whatever was configured is what stays.
TEST_F(LocksTest, NothingComesBetweenAnImageAndItsBusWrite) {
  const std::vector<std::pair<const char*, std::function<int(const Bytes&)>>> kWrites{
      {"through", [](const Bytes& value) {
         return writeThrough(store(), store().SendParameterReg, 0x18, 0x18, value);
       }},
      {"draft", [](const Bytes& value) {
         FeatureDraft draft;
         draft.put(0x18, value[0]);
         return putFeature(store(), draft, 0x18, 1, "test");
       }}};
  for (const auto& [name, write] : kWrites) {
    std::atomic<bool> done{false};
    std::thread reader([&] {
      std::array<uint8_t, 1> byte{};
      while (!done) readThrough(store(), store().SendParameterReg, 0x18, 0x18, byte);
    });
    for (unsigned i = 0; i < 2000; ++i) {
      const auto value = static_cast<uint8_t>(i);
      ASSERT_EQ(write({value}), 0);
      ASSERT_EQ(store().SendParameterReg[0x18], value) << name << ", write " << i;
    }
    done = true;
    reader.join();
  }
}

TEST_F(LocksTest, AnImageIsNotHeldOverFlashShellCardsOrSends) {
  const auto held = [] {
    if (store().imageLock.TryLock() != 0) return true;
    store().imageLock.UnLock();
    return false;
  };
  // The power goes at each flash write in turn, on the thread that writes: who comes then finds the lock free.
  simboard::onOutage([&](simboard::Outage) { EXPECT_FALSE(held()); });
  for (uint32_t write = 1; write < 20; ++write) {
    board.cutPower({write});
    store().FpgaOnlineFlag = 1;
    Tprocess::CalculateParaOfSenderHandler();
    board.cutPower({});
    board.powerOn();
  }
  simboard::onOutage([](simboard::Outage) {});
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

TEST_F(LocksTest, AnAdvancedConfigurationIsTakenOnceForBothSteps) {
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    Bytes block(shortcut::kPortSize);
    block[shortcut::kPortRowsAt] = 2;
    block[shortcut::kPortColumnsAt] = 3;
    board.setFlash(flash::kShortcutConfig + shortcut::kPortsAt + shortcut::kPortSize * port, block);
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
