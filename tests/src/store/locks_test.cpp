// The store's two locks: who takes which, and what would go wrong without.
#include "calc/screenrecord.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "proto/store/smarttable.h"
#include "store_fixture.h"

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
    };
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

// One thread configures registers while another reads them back: whatever was configured is what stays.
TEST_F(LocksTest, NothingComesBetweenAnImageAndItsBusWrite) {
  const std::vector<std::pair<const char*, std::function<int(const Bytes&)>>> kWrites{
      {"through",
       [](const Bytes& value) { return writeThrough(store(), store().SendParameterReg, 0x18, 0x18, value); }},
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
