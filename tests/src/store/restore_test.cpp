// What a restore makes of a flash and an FPGA that cannot be read, and what a later save makes of it.
#include "maps/cardmap.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "platform/sysconf.h"
#include "process/colour.h"
#include "process/tprocess.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/porttables.h"
#include "store_fixture.h"

namespace ORVE_MCUC {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Area {
  const char* name;
  uint32_t first;
  uint32_t length;
};
constexpr Area kFeature{"feature", flash::kFeature, 512};
constexpr Area kGlobal{"global", flash::kGlobalPara, 512};
constexpr Area kTable0{"table of port 0", flash::kPositionTables, 0x1000};
constexpr Area kTable9{"table of port 9", flash::kPositionTables + 0x9000, 0x1000};
constexpr Area kNumber{"number", flash::kNumberTable, 768};
constexpr Area kScreen{"screen", flash::kScreenPara, 2};
constexpr Area kAreas[] = {kFeature, kGlobal, kTable0, kTable9, kNumber, kScreen};

auto EachHasFailed(bool failed) {
  return testing::Each(testing::Property(&LoadState::failed, failed));
}

class RestoreTest : public StoreFixture {
 protected:
  static constexpr uint8_t kPattern = 0x20;  // also an output mode that is left alone
  RestoreTest() : StoreFixture("card_width = 97\ncard_height = 81\n") {
    for (const Area& area : kAreas) board.setFlash(area.first, Bytes(area.length, kPattern));
  }
  void failReads(const Area& area) const {
    board.fault(Fault::FlashRead, {TestBoard::kEveryCall, 0, area.first, area.first + area.length - 1});
  }
  static CardSize measured() { return store().ReceiveCardSize; }
  Bytes stored(const Area& area) const { return board.flash(area.first, area.length); }
  // Other values in memory than in flash, as a peer or an empty start leaves them.
  static void changeImages() {
    store().SendParameterReg.fill(0x77);
    store().ScreenParaReg.fill(0x77);
    ParaTable.fill(0x77);
    PortsTopoPara.fill(0x77);
    VsPartPara.fill(0x77);
  }
};

TEST_F(RestoreTest, WhatCannotBeLoadedIsLeftAloneInFlashAndTheRestIsSaved) {
  for (const Area& lost : kAreas) {
    SCOPED_TRACE(lost.name);
    for (const Area& area : kAreas) board.setFlash(area.first, Bytes(area.length, kPattern));
    failReads(lost);
    daemon.restart();
    changeImages();
    const auto errors = errorsOf([] { Tprocess::Sprocess_SaveSendCardPara(0, nullptr); });
    EXPECT_THAT(errors, Contains(HasSubstr("not saved")));
    for (const Area& area : kAreas) {
      const uint8_t expected = area.first == lost.first ? kPattern : 0x77;
      EXPECT_EQ(stored(area), Bytes(area.length, expected)) << area.name;
    }
    board.clearFaults();
  }
}

TEST_F(RestoreTest, AReadThatFailedOnceIsMadeUpForBeforeAnythingIsPutIntoTheImage) {
  board.fault(Fault::FlashRead, {TestBoard::kEveryCall});
  daemon.restart();
  board.clearFaults();
  ByteImage<1024> table;
  table.putLe16(2, 1);
  table.putLe16(4, 3);
  table.putLe16(6, 3);
  store().CalculateParaOfSenderInMosaicMode(table, {});
  EXPECT_EQ(board.flash(flash::ofFeature(0x21), 1), Bytes{kPattern});
  EXPECT_EQ(board.flash(flash::ofFeature(fpga::kScreenWidth), 2), (Bytes{0x80, 0x01})) << "calculated";
  EXPECT_EQ(board.flash(flash::kNumberTable + 0x109, 1), Bytes{kPattern});
  EXPECT_EQ(board.flash(flash::kNumberTable, 2), (Bytes{3, 0})) << "calculated";
  EXPECT_EQ(board.flash(kTable9.first + 4, 2), (Bytes{0x80, 0})) << "calculated";
  EXPECT_EQ(board.flash(kTable9.first + 0xFFC, 4), Bytes(4, kPattern)) << "behind the last repetition";
  EXPECT_EQ(stored(kGlobal), Bytes(512, kPattern));
  EXPECT_THAT(store().loadStates.portTables, EachHasFailed(false));
}

TEST_F(RestoreTest, WhatIsMissingIsLoadedOnceItCanBeRead) {
  board.fault(Fault::FlashRead, {TestBoard::kEveryCall});
  daemon.restart();
  board.clearFaults();
  const LoadStates& states = store().loadStates;
  const auto expectFailed = [&](bool failed) {
    for (const LoadState* state : {&states.feature, &states.global, &states.number, &states.screen})
      EXPECT_EQ(state->failed(), failed);
    EXPECT_THAT(states.portTables, EachHasFailed(failed));
  };
  expectFailed(true);
  loadWhatIsMissing(store());
  expectFailed(false);
  for (const uint8_t loaded : {store().SendParameterReg[0x21], ParaTable[0], VsPartPara[0],
                               store().ScreenParaReg[0], PortsTopoPara[0]})
    EXPECT_EQ(loaded, kPattern);
}

TEST_F(RestoreTest, TheParameterTableIsLoadedOnceAndALaterRestoreTakesNothingBack) {
  daemon.restart();
  EXPECT_EQ(ParaTable[0], kPattern);
  ParaTable[0] = 1;
  store().RestoreFPGA();
  EXPECT_EQ(ParaTable[0], 1);
}

TEST_F(RestoreTest, AHardwarePageThatCannotBeReadIsNotSaved) {
  board.setFlash(flash::kBasicHardwareCopy, Bytes(256, kPattern));
  board.setFlash(flash::kBasicHardwarePage, Bytes(256, 0x31));
  board.fault(Fault::FlashRead, {TestBoard::kEveryCall, 0, 0x1000, 0x10FF});
  store().ReadHardwareInfo();
  store().SaveParaToFlash(0);
  EXPECT_EQ(board.flash(flash::kBasicHardwareCopy, 256), Bytes(256, kPattern));
  board.clearFaults();
  store().SaveParaToFlash(0);
  EXPECT_EQ(board.flash(flash::kBasicHardwareCopy + 255, 1), Bytes{0x31});
}

TEST_F(RestoreTest, TheHardwaresOwnRegistersAreThoseOfTodayOnceTheFpgaIsThere) {
  constexpr uint32_t kStatus[] = {0x1E, 0x1F, 0x9E, 0x9F, 0x120, 0x121, 0x126, 0x127, 0x1D7, 0x1E0, 0x1E1};
  for (const uint32_t at : kStatus) board.setFpga(at, {static_cast<uint8_t>(at)});
  store().RestoreFPGA();
  for (const uint32_t at : kStatus) EXPECT_EQ(store().SendParameterReg[at], kPattern) << at;
  store().FpgaOnlineFlag = 1;
  store().RestoreFPGA();
  for (const uint32_t at : kStatus) EXPECT_EQ(store().SendParameterReg[at], static_cast<uint8_t>(at)) << at;
  EXPECT_EQ(store().SendParameterReg[0x20], kPattern);
  EXPECT_EQ(store().SendParameterReg[0x1D8], kPattern);
  EXPECT_EQ(store().SendParameterReg[0x1F2], kPattern) << "a setting of the image lies there";
}

TEST_F(RestoreTest, WhatWasNotLoadedIsWrittenToTheFpgaOnceItCanBeRead) {
  const struct {
    Area area;
    uint32_t fpga;
  } parts[] = {{kFeature, 0x20},
               {kTable0, portTableOnFpga(0) + 0xFFF},
               {kTable9, portTableOnFpga(9)},
               {kNumber, kNumberPorts8To11.fpga}};
  for (const auto& [area, at] : parts) {
    SCOPED_TRACE(area.name);
    board.setFpga(at, {0x66});
    failReads(area);
    daemon.restart();
    daemon.bringUp();
    EXPECT_EQ(board.fpga(at, 1), Bytes{0x66}) << "not known, not written";
    EXPECT_FALSE(store().FpgaParaLoadFinish);
    board.setFpga(0x1E, {0x67});
    store().SendParameterReg[0x1E] = 0x67;
    board.clearFaults();
    store().SaveParaToFlash(1);
    EXPECT_EQ(board.fpga(at, 1), Bytes{kPattern});
    EXPECT_EQ(stored(area)[at == 0x20 ? 0x20 : 0], kPattern);
    EXPECT_TRUE(store().FpgaParaLoadFinish);
    EXPECT_EQ(store().SendParameterReg[0x1E], 0x67) << "the hardware's own, of today";
    EXPECT_EQ(store().SendParameterReg[fpga::kOutputEnable], 0x5A) << "closed by the restore";
    EXPECT_EQ(board.fpga(fpga::kOutputEnable, 1), Bytes{0});
  }
}

TEST_F(RestoreTest, NoReadOfAnFpgaThatIsNotLoadedTakesAnythingFromWhatFlashHolds) {
  const auto readAll = [this] {
    EXPECT_EQ(daemon.read(reg::kFeature, 512).data.at(0x51), 0) << "told as the FPGA holds it";
    EXPECT_EQ(daemon.read(reg::kScanBoardPosition + 0x9000, 0x1000).data, Bytes(0x1000));
    EXPECT_EQ(daemon.read(reg::kFunCardPortNumber, 768).data, Bytes(768));
  };
  daemon.restart();
  readAll();
  store().SaveParaToFlash(1);
  for (const Area& area : {kTable0, kTable9, kNumber})
    EXPECT_EQ(stored(area), Bytes(area.length, kPattern)) << area.name;
  EXPECT_EQ(board.flash(flash::ofFeature(0x20), 0x7E), Bytes(0x7E, kPattern)) << "between status registers";
  // It answers writes, too, and holds nothing of them.
  daemon.write(reg::ofFeature(0x52), {7});
  daemon.write(reg::kFunCardPortNumber + 0x10, {8});
  daemon.workOff();
  board.setFpga(0x52, {0});
  board.setFpga(kNumberPorts0To3.fpga, Bytes(0x80));
  readAll();
  store().SaveParaToFlash(1);
  EXPECT_EQ(board.flash(flash::ofFeature(0x51), 3), (Bytes{kPattern, 7, kPattern}));
  EXPECT_EQ(board.flash(kNumber.first + 0xF, 3), (Bytes{kPattern, 8, kPattern}));
  daemon.bringUp();
  for (const uint32_t at : {0x51U, portTableOnFpga(9) + 0xFFF, kNumberPorts8To11.fpga})
    EXPECT_EQ(board.fpga(at, 1), Bytes{kPattern}) << at;
}

TEST_F(RestoreTest, WhatPeersSetWhileFlashCouldNotBeReadStaysWhenItCan) {
  board.fault(Fault::FlashRead, {TestBoard::kEveryCall});
  daemon.restart();
  daemon.bringUp();
  daemon.write(reg::ofFeature(0x51), {1, 2});
  daemon.write(reg::kScanBoardPosition + 4, {3, 4});
  daemon.write(reg::kFunCardPortNumber, {5, 6});
  daemon.workOff();
  board.clearFaults();
  store().SaveParaToFlash(1);
  for (const auto& [onFlash, onFpga, bytes] : {std::tuple{flash::ofFeature(0x51), 0x51U, Bytes{1, 2}},
                                               {kTable0.first + 4, portTableOnFpga(0) + 4, Bytes{3, 4}},
                                               {kNumber.first, kNumberPorts0To3.fpga, Bytes{5, 6}}}) {
    const Bytes around{bytes[0], bytes[1], kPattern, kPattern};
    EXPECT_EQ(board.flash(onFlash, 4), around) << onFlash;
    EXPECT_EQ(board.fpga(onFpga, 4), around) << onFpga;
  }
}

TEST_F(RestoreTest, OfAnImageThatCouldNotBeReadAMappingWritesOnlyWhatItDecides) {
  failReads(kFeature);
  daemon.restart();
  daemon.bringUp();
  for (const uint32_t at : {0x23U, 0x28U, 0x1C5U}) board.setFpga(at, {0x66});
  ByteImage<1024> table;
  for (const std::size_t at : {2U, 4U, 6U}) table.putLe16(at, 3);
  store().CalculateParaOfSenderInMosaicMode(table, {});
  EXPECT_EQ(board.fpga(fpga::kScreenWidth, 4), (Bytes{0x80, 1, 0x80, 1}));
  EXPECT_EQ(board.fpga(fpga::portWindow(9), 2), (Bytes{0x80, 1}));
  for (const uint32_t at : {0x23U, 0x28U, 0x1C5U}) EXPECT_EQ(board.fpga(at, 1), Bytes{0x66}) << at;
}

TEST_F(RestoreTest, WhatCouldNotBeWrittenToTheFpgaIsSavedThoughAPeerReadsOldBytesFromThere) {
  daemon.restart();
  daemon.bringUp();
  board.fault(Fault::FpgaWrite, {TestBoard::kEveryCall});
  store().SendMasterOrBackup(1);
  board.clearFaults();
  daemon.read(reg::kFeature, 512);
  store().SaveParaToFlash(1);
  EXPECT_EQ(board.flash(flash::ofFeature(fpga::kMasterSlavePorts9To16), 8), Bytes(8, fpga::kBackup));
  EXPECT_EQ(board.fpga(fpga::kMasterSlavePorts9To16, 1), Bytes{kPattern});
}

TEST_F(RestoreTest, WhatWasLoadedOnceIsRestoredToTheFpgaThoughALaterReadFails) {
  daemon.restart();
  board.fault(Fault::FlashRead, {TestBoard::kEveryCall});
  daemon.bringUp();
  for (const uint32_t at : {0x20U, portTableOnFpga(0), portTableOnFpga(9), kNumberCommon.fpga})
    EXPECT_EQ(board.fpga(at, 1), Bytes{kPattern}) << at;
}

TEST_F(RestoreTest, TheFpgaIsLoadedWhenAllOfItWasWritten) {
  daemon.restart();
  EXPECT_FALSE(store().FpgaParaLoadFinish) << "without an FPGA";
  for (const uint32_t at : {0x20U, portTableOnFpga(0), portTableOnFpga(9) + 0xC00, kNumberCommon.fpga}) {
    board.fault(Fault::FpgaWrite, {TestBoard::kEveryCall, 0, at, at});
    daemon.bringUp();
    store().SaveParaToFlash(1);
    EXPECT_FALSE(store().FpgaParaLoadFinish) << at;
    board.setFpga(0x1F, {static_cast<uint8_t>(at >> 12 | 5)});
    daemon.read(reg::kFeature, 512);
    EXPECT_EQ(store().SendParameterReg[0x1F], board.fpga(0x1F, 1)[0]) << "of today's hardware";
    board.clearFaults();
    daemon.bringUp();
    EXPECT_TRUE(store().FpgaParaLoadFinish) << at;
  }
}

TEST_F(RestoreTest, WhatIsWrittenPastAnImageIsBroughtThereByTheNextRead) {
  daemon.restart();
  store().FpgaOnlineFlag = 1;
  SendCardHDRProcess(store(), 0);
  daemon.read(reg::kFeature, 512);
  daemon.read(reg::kFunCardPortNumber, 768);
  EXPECT_EQ(store().SendParameterReg[fpga::kHdrEnable], 0xFF) << "no HDR";
  EXPECT_EQ(VsPartPara[kBitDepthMarkAt], board.fpga(fpga::kBitDepthMark, 1)[0]);
  EXPECT_EQ(VsPartPara[kBitDepthMarkAt + 1], kPattern) << "not told yet";
}

TEST_F(RestoreTest, EveryPortTableGoesBackToTheFpga) {
  store().FpgaOnlineFlag = 1;
  store().RestoreFPGA();
  for (const uint32_t port : {0U, 9U})
    EXPECT_EQ(board.fpga(portTableOnFpga(port) + 0xFFF, 1), Bytes{kPattern});
}

TEST_F(RestoreTest, TheFirstBootAfterAResetTakesStoredSizesAndZerosAsTheyAre) {
  const struct {
    Bytes stored;
    bool readable;
    CardSize card;
  } cases[] = {
      {{0, 1, 0, 0, 64, 0, 0, 0}, true, {256, 64}},        {{0, 0, 0, 0, 64, 0, 0, 0}, true, {0, 64}},
      {{64, 0, 0, 0, 0, 0, 0, 0}, true, {64, 0}},          {{0, 0, 1, 0, 64, 0, 0, 0}, true, {128, 128}},
      {{64, 0, 0, 0, 0, 0, 1, 0}, true, {128, 128}},       {{0, 1, 0, 0, 64, 0, 0, 0}, false, {128, 128}},
      {{0xFF, 0xFF, 0, 0, 1, 0, 0, 0}, true, {0xFFFF, 1}},
  };
  for (const auto& [size, readable, card] : cases) {
    board.clearFaults();
    ASSERT_EQ(sysconf_setenv("firstboot", "1"), 0);
    board.setFlash(flash::kScreenSize, size);
    if (!readable)
      board.fault(Fault::FlashRead, {TestBoard::kEveryCall, 0, flash::kScreenSize, flash::kScreenSize + 7});
    daemon.restart();
    EXPECT_FALSE(store().FpgaParaLoadFinish) << "without an FPGA nothing was written to it";
    EXPECT_EQ(board.flash(flash::kScreenSize, 8), size);
    EXPECT_EQ(store().SendParameterReg.le16(fpga::kOutputWidth), card.width);
    EXPECT_EQ(store().SendParameterReg.le16(fpga::kOutputHeight), card.height);
    store().FpgaOnlineFlag = 1;
    store().RestoreFPGA();
    EXPECT_TRUE(store().FpgaParaLoadFinish);
    EXPECT_EQ(card.width, measured().width);
    EXPECT_EQ(board.flash(flash::kNumberTable + 0x109, 1), Bytes{kPattern}) << "not calculated, not lost";
  }
}

TEST_F(RestoreTest, FailuresOfSavesAndPagesAreErrors) {
  daemon.restart();
  const struct {
    Area area;
    const char* line;
  } saves[] = {{kFeature, "=== Save feature para to flash failed! ret = -1"},
               {kGlobal, "=== Save Global para to flash failed! ret = -1"},
               {kTable9, "=== Save position para to flash failed! ret = -1"},
               {kNumber, "=== Save number para to flash failed! ret = -1"},
               {{"hardware", flash::kBasicHardwareCopy, 256},
                "=== Save  basic hardware para to flash failed! ret = -1"}};
  for (const auto& [area, line] : saves) {
    board.fault(Fault::FlashWrite, {3, 0, area.first, area.first + area.length - 1});
    const auto errors = errorsOf([] {
      store().SaveParaToFlash(0);
      store().SaveParaToFlash(1);
    });
    EXPECT_THAT(errors, ElementsAre(HasSubstr(line)));
  }
  const struct {
    uint32_t place;
    std::function<void()> action;
    const char* caller;
  } bytes[] = {
      {flash::kBasicHardwareSaved, [] { Data_Preset::getInstance()->SaveBasicParaToFlash(); },
       "SaveBasicPara"},
      {flash::kBasicHardwarePage, [] { Data_Preset::getInstance()->SaveBasicParaToFlash(); },
       "SaveBasicPara"},
      {flash::kSerialNumber, [] { store().SNTransfer(); }, "=== SNTransfer ===8 bytes were not written"}};
  for (const auto& [place, action, caller] : bytes) {
    board.fault(Fault::FlashWrite, {3, 0, place, place});
    EXPECT_THAT(errorsOf(action), Contains(HasSubstr(caller)));
    board.clearFaults();
  }
  board.fault(Fault::FlashWrite, {3, 0, flash::kSoftwareTable + 256, flash::kSoftwareTable + 511});
  const Bytes data(600, 1);
  EXPECT_THAT(errorsOf([&] { store().CopyConstDataToFlash(flash::kSoftwareTable, data); }),
              ElementsAre(HasSubstr("the real addr = 0x00c30100 result = -1")));
  EXPECT_EQ(board.flash(flash::kSoftwareTable + 512, 88), Bytes(88, 1)) << "the pages behind it are written";
}

TEST_F(RestoreTest, AccessOverSpansAnswersTheDriversResultAndLogsUnderTheWordsGiven) {
  Bytes bytes(2);
  const CardPlace card{card::kReceivingCard, 0, 0};
  store().GigaPhyLinkSta = 1;
  const struct {
    Fault kind;
    std::function<int(const char*)> call;
    const char* line;
  } accesses[] = {
      {Fault::FpgaRead,
       [&](const char* text) {
         return readFpga(0x24, bytes, {"Caller", text});
       },
       "2 bytes were not read from FPGA 0x00000024. ret = -1"},
      {Fault::FpgaWrite,
       [&](const char* text) {
         return writeFpga(0x24, bytes, {"Caller", text});
       },
       "2 bytes were not written to FPGA 0x00000024. ret = -1"},
      {Fault::FlashRead,
       [&](const char* text) {
         return readFlash(0x24, bytes, {"Caller", text});
       },
       "2 bytes were not read from flash 0x00000024. ret = -1"},
      {Fault::FlashWrite,
       [&](const char* text) {
         return writeFlash(0x24, bytes, {"Caller", text});
       },
       "2 bytes were not written to flash 0x00000024. ret = -1"},
      {Fault::CardRead,
       [&](const char* text) {
         return readCard(card, 0x24, bytes, {"Caller", text});
       },
       "2 bytes were not read from card register 0x00000024. ret = -1"},
      {Fault::CardWrite,
       [&](const char* text) {
         return writeCard(card, 0x24, bytes, {"Caller", text});
       },
       "2 bytes were not written to card register 0x00000024. ret = -1"},
  };
  for (const auto& access : accesses) {
    EXPECT_THAT(errorsOf([&] { EXPECT_EQ(access.call(nullptr), 0); }), IsEmpty()) << access.line;
    for (const auto& words : {std::pair<const char*, std::string>{nullptr, access.line},
                              {"it failed.", "it failed."},
                              {"ret = ", "ret = -1"}}) {
      board.fault(access.kind, {TestBoard::kEveryCall});
      EXPECT_THAT(errorsOf([&] { EXPECT_EQ(access.call(words.first), -1); }),
                  Contains("Error === Caller ===" + words.second));
      board.clearFaults();
    }
  }
  Bytes tooMuch(0x10000);
  EXPECT_EQ(readCard(card, 0x24, tooMuch), -1);
  EXPECT_EQ(writeCard(card, 0x24, tooMuch), -1);
}

// With the fiber module's link the first port is asked, otherwise the first that is linked.
TEST(CardSizeTest, IsThatOfTheFirstCardThatCanBeAsked) {
  TestDaemon daemon("fpga_autoload = no\ncopper_ports = 2\n");
  Data_Global& store = *Data_Global::getInstance();
  constexpr CardSize kBefore{1, 1};
  constexpr CardSize kDefault{};
  const struct {
    const char* name;
    uint16_t links;
    uint8_t module;
    TestBoard::Bytes answer;  // none: the card is silent
    int result;
    CardSize size;
  } cases[] = {
      {"a card", 4, 0, {0x61, 1, 0x51, 2}, 0, {0x161, 0x251}},
      {"no height", 4, 0, {97, 0, 0, 0}, -1, kBefore},
      {"no width", 4, 0, {0, 0, 81, 0}, -1, kBefore},
      {"silence", 4, 0, {}, -1, kDefault},
      {"a module without a link", 4, 0xA0, {97, 0, 81, 0}, 0, {97, 81}},
      {"a link without a module", 4, 0x01, {97, 0, 81, 0}, 0, {97, 81}},
      {"a module with a link", 4, 0xA1, {97, 0, 81, 0}, -1, kDefault},
      {"no link at all", 0, 0, {97, 0, 81, 0}, -1, kDefault},
  };
  for (const auto& [name, links, module, answer, result, size] : cases) {
    store.netLinksSeen = store.fiberLinksSeen = true;
    store.GigaPhyLinkSta = links;
    store.ReceiveCardSize = kBefore;
    daemon.board.setFpga(fpga::kFiberLink, {module});
    if (answer.empty()) daemon.board.failNext(TestBoard::Fault::CardRead, TestBoard::kEveryCall);
    daemon.board.setCard(1, 2, 0, card::kSize, answer);
    EXPECT_EQ(store.GetRecvCardSize_EnvNew(), result) << name;
    const CardSize measured = store.ReceiveCardSize;
    EXPECT_EQ(measured.width, size.width) << name;
    EXPECT_EQ(measured.height, size.height) << name;
    EXPECT_EQ(store.OptModuleLinkSta, module) << name;
    daemon.board.clearFaults();
  }
}

TEST(UnseenLinksTest, LinksThatNoTickHasSeenAreReadWhenASizeIsNeeded) {
  const auto store = []() -> Data_Global& { return *Data_Global::getInstance(); };
  const auto measured = [&]() -> CardSize { return store().ReceiveCardSize; };
  const struct {
    std::string conf;
    int result;
  } boards[] = {{"copper_ports = 2\n", 0},
                {"copper_ports =\nfiber1_ports = 1\n", 0},
                {"copper_ports =\nfiber2_ports = 9\n", 0},
                {"copper_ports =\n", -1}};
  for (const auto& [conf, result] : boards) {
    TestDaemon other("fpga_autoload = no\ncard_width = 97\ncard_height = 81\n" + conf);
    store().ReceiveCardSize = CardSize{1, 1};
    EXPECT_EQ(store().GetRecvCardSize_EnvNew(), result) << conf;
    EXPECT_EQ(measured().width, result == 0 ? 97 : 128) << conf;
    // What the monitor has seen holds, whatever the hardware shows now.
    store().GigaPhyLinkSta = 0;
    store().Fiber1BelowLinkStatus_buff.fill(0);
    store().Fiber2BelowLinkStatus_buff.fill(0);
    store().netLinksSeen = true;
    store().fiberLinksSeen = true;
    EXPECT_EQ(store().GetRecvCardSize_EnvNew(), -1) << conf;
  }
}

}  // namespace
}  // namespace ORVE_MCUC
