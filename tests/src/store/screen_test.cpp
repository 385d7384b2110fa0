// Saving, reloading and the handlers of screen configurations, without a running daemon.
#include "../../platform/board_fixture.h"
#include "calc/screenrecord.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

class ScreenHandlers : public BoardTest {
 protected:
  void SetUp() override { start(); }
  void TearDown() override {
    Data_Global::deleteInstance();
    PortsTopoPara.fill(0);
    VsPartPara.fill(0);
    ParaTable.fill(0);
  }
  static Data_Global& store() { return *Data_Global::getInstance(); }
};

TEST_F(ScreenHandlers, SaveBringsEachImageToItsPlaceAndGoesOnBehindOneThatFails) {
  store().SendParameterReg[0x24] = 1;
  ParaTable[511] = 2;
  PortsTopoPara[40959] = 3;
  VsPartPara[767] = 4;
  store().ScreenParaReg[1] = 5;
  store().LEDConfigStatus = shortcut::kByTables;
  Tprocess::Sprocess_SaveSendCardPara(0, nullptr);
  EXPECT_EQ(flash(0xB99000, 1), Bytes{shortcut::kByTables});
  EXPECT_EQ(flash(0xC20041, 1), Bytes{5});
  EXPECT_EQ(flash(0xA3B124, 1), Bytes{1});
  EXPECT_EQ(flash(0xA61000 + 511, 1), Bytes{2});
  EXPECT_EQ(flash(0xA3C000 + 40959, 1), Bytes{3});
  EXPECT_EQ(flash(0xA5C000 + 767, 1), Bytes{4});
  EXPECT_EQ(flash(0xB88000, 4), (Bytes{0x39, 0xF6, 0xA5, 0x5A}));
  EXPECT_EQ(journal().back(), "shell sync");

  store().SendParameterReg[0x24] = 6;
  ParaTable[511] = 7;
  failNext(Fault::FlashWrite, 3);
  store().SaveParaToFlash(1);
  EXPECT_EQ(flash(0xA3B124, 1), Bytes{1}) << "three tries of the feature image failed";
  EXPECT_EQ(flash(0xA61000 + 511, 1), Bytes{7});
}

TEST_F(ScreenHandlers, SaveOfTheHardwarePageTouchesNothingElse) {
  Data_Preset::getInstance()->BasicHardWareReg[255] = 9;
  store().SaveParaToFlash(0);
  store().SaveParaToFlash(2);
  EXPECT_EQ(flash(0xA010FF, 1), Bytes{9});
  EXPECT_EQ(flash(0xB88000, 4), Bytes(4));
  Data_Preset::deleteInstance();
}

TEST_F(ScreenHandlers, ReloadRestoresAnFpgaThatHasLostEverything) {
  store().SendParameterReg.putLe16(0x24, 0x1234);
  store().SendParameterReg[0x9D] = 0xFF;
  PortsTopoPara[0x1004] = 0x56;
  VsPartPara[0x200] = 0x78;
  store().SaveParaToFlash(1);
  store().SendParameterReg.fill(0);
  store().FpgaOnlineFlag = 1;
  Tprocess::Sprocess_ReloadSendCardProgram(0, nullptr);
  EXPECT_EQ(fpga(0x24, 2), (Bytes{0x34, 0x12}));
  EXPECT_EQ(fpga(0x601004, 1), Bytes{0x56});
  EXPECT_EQ(fpga(0x502000, 1), Bytes{0x78});
  EXPECT_EQ(store().RebootRF, 0);
  EXPECT_EQ(store().NormalBackupStatus, 1) << "the FPGA had no backup mark before it was written";
  EXPECT_EQ(store().SendParameterReg[0x1DE], 0x5A);
  EXPECT_TRUE(store().FpgaParaLoadFinish);
}

TEST_F(ScreenHandlers, ARestoreKeepsImagesThatCannotBeRead) {
  store().SendParameterReg[0x51] = 1;
  PortsTopoPara[0] = 2;
  VsPartPara[0] = 3;
  store().LEDConfigStatus = shortcut::kSmart;
  store().PbufMorSMode = 1;
  failNext(Fault::FlashRead, kEveryCall);
  store().RestoreFPGA();
  EXPECT_EQ(store().SendParameterReg[0x51], 1);
  EXPECT_EQ(PortsTopoPara[0], 2);
  EXPECT_EQ(VsPartPara[0], 3);
  EXPECT_EQ(store().LEDConfigStatus, shortcut::kSmart);
  EXPECT_EQ(store().PbufMorSMode, 1);
}

TEST_F(ScreenHandlers, PayloadsThatAreMissingOrTooShortSubmitNothing) {
  std::array<char, 27> shortRecord{};
  Tprocess::Sprocess_CalculateParaOfSender(32, nullptr);
  Tprocess::Sprocess_CalculateParaOfSender(shortRecord.size(), shortRecord.data());
  Tprocess::Sprocess_AdvCalcParaOfSender(1, nullptr);
  EXPECT_EQ(store().CalculateParaHandlerCnt, 0U);
  EXPECT_EQ(store().LEDConfigStatus, 0);
  for (const std::string& line : journal()) EXPECT_FALSE(line.starts_with("flash-write")) << line;
}

TEST_F(ScreenHandlers, ASizeOfZeroBecomesTheSmallestOutput) {
  ByteImage<1024> table;
  table.putLe16(4, 3);
  store().CalculateParaGetSreenSize(table);
  EXPECT_EQ(flash(0xC20000, 8), (Bytes{128, 0, 0, 0, 128, 0, 0, 0}));
  EXPECT_EQ(fpga(0x1EC, 4), (Bytes{128, 0, 128, 0}));
}

}  // namespace
}  // namespace ORVE_MCUC
