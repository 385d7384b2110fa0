// Screen configurations: submissions on the work thread, and the mapping once they have come to rest.
#include <array>
#include <optional>

#include "calc/screenrecord.h"
#include "hextext.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/smarttable.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kAdvancedArea = 4096;
constexpr int kRecordTextRoom = 1536;
constexpr std::size_t kScreenParaSaved = 2;

Data_Global& store() {
  return *Data_Global::getInstance();
}

void storeConfigStatus(uint8_t status) {
  writeFlash(flash::kShortcutConfig, {&status, 1},
             {"WriteToBackupInfo", "Write backup info to flash failed. ret = "});
}

void setConfigStatus(uint8_t status) {
  store().LEDConfigStatus = status;
  storeConfigStatus(status);
}

bool isTaken(const SmartScreen& screen) {
  const SmartScreen taken = screenIn(MyTempParaTable, MyTempParaCharTable);
  return taken.rows == screen.rows && taken.columns == screen.columns &&
         taken.cardsPerPort == screen.cardsPerPort && taken.mode == screen.mode;
}

void logRecord(std::span<const uint8_t> record) {
  if (!tracePasses(kInfo)) return;
  const HexText<kRecordTextRoom> text(record);
  PARLEND_TRACE(kInfo) << workKey<CalculateParaOfSenderKey>.handler << " enter:" << text.view();
}

// A submission takes the backup marker back: the output ports are assigned anew.
FeatureDraft clearBackupMark() {
  FeatureDraft draft;
  draft.put(fpga::kBackupMark, fpga::kNoMark);
  putFeature(store(), draft);
  writeFlash(flash::ofFeature(fpga::kBackupMark), {&fpga::kNoMark, 1}, "Sprocess_CalculateParaOfSender");
  store().NormalBackupStatus = 1;
  return draft;
}

void submit(std::span<const uint8_t> record) {
  CMutexGuardT<CMutexThreadRecursive> guard(store().m_mutex);
  loadWhatIsMissing(store());
  const SmartScreen screen = shortcut::smartScreenOf(record.first<shortcut::kUsedSize>());
  putScreen(MyTempParaTable, MyTempParaCharTable, screen);
  MyTempParaCharTable[kTempRoleAt] = store().PbufMorSMode;
  PARLEND_TRACE(kInfo) << "MyTempParaTable[1] = " << screen.rows << " MyTempParaTable[2] = " << screen.columns
                       << " MyTempParaTable[3] = " << screen.cardsPerPort
                       << " MyTempParaCharTable[0] = " << screen.mode
                       << " MyTempParaCharTable[2]=" << MyTempParaCharTable[kTempRoleAt];
  store().CalculateParaGetSreenSize(MyTempParaTable, clearBackupMark());
  setConfigStatus(shortcut::kSmart);
  store().CalculateParaHandlerCnt.add(1);
}

// Any image with the fields of a record.
template <class Image>
void logFields(const char* text, const Image& image) {
  PARLEND_TRACE(kInfo) << text << image[shortcut::kRowsAt] << " " << image[shortcut::kColumnsAt] << " "
                       << image[shortcut::kCardsPerPortAt] << " " << image[shortcut::kCardsPerPortAt + 1]
                       << " ,[0x11] " << image[shortcut::kModeAt];
}

using Record = std::array<uint8_t, shortcut::kUsedSize>;

std::optional<Record> readRecord() {
  Record record{};
  if (readFlash(flash::kShortcutConfig, record,
                {"CalculateParaOfSenderHandler", "the record cannot be read. ret = "}) != 0) {
    return std::nullopt;
  }
  logFields("buff_new[0x16~0x19] = ", record);
  logFields("TmpCalcScreenPara[0x16~0x19] = ", store().TmpCalcScreenPara);
  return record;
}

// The record in flash is the latest submission; the table may still hold one before it.
void takeStored(const Record& record) {
  const SmartScreen stored = shortcut::smartScreenOf(record);
  if (isTaken(stored)) return;
  PARLEND_TRACE(kInfo) << "============================ Read Flash Para is diff CalculateParaOfSenderHandler "
                          "===========================";
  putScreen(MyTempParaTable, MyTempParaCharTable, stored);
}

// The ports as they are stored at one moment: peers go on writing them. They are also what the working arrays
// hold from now on.
std::optional<AdvancedScreen> readAdvancedScreen() {
  std::array<uint8_t, kAdvancedArea> area{};
  if (readFlash(flash::kShortcutConfig, area,
                {"Sprocess_AdvCalcParaOfSender", "the ports cannot be read. ret = "}) != 0) {
    return std::nullopt;
  }
  if (tracePasses(kInfo)) {
    const HexText<kRecordTextRoom> text{std::span(area).first<kRecordTextRoom / 3 - 1>()};
    PARLEND_TRACE(kInfo) << "ShortcutConfigScreenRegister  buf:" << text.view();
  }
  AdvancedScreen screen;
  for (std::size_t p = 0; p < kMappedPorts; ++p) {
    const auto block = std::span<const uint8_t>(area).subspan(shortcut::kPortsAt + p * shortcut::kPortSize);
    const AdvancedPort port = shortcut::advancedPortOf(block.first<shortcut::kPortSize>());
    screen[p] = port;
    TempAdvPortCM[p] = port.mode;
    TempAdvCfgPortRow[p] = port.rows;
    TempAdvCfgPortCol[p] = port.columns;
    TempAdvCfgPortX[p] = port.x;
    TempAdvCfgPortY[p] = port.y;
    PARLEND_TRACE(kInfo) << "port num = " << p << " row = " << port.rows << " col = " << port.columns
                         << " x = " << port.x << " y = " << port.y << " cm = " << port.mode;
  }
  return screen;
}

// The first bytes of the screen information; what could not be loaded is left alone in flash.
void saveScreenPara() {
  constexpr char kCaller[] = "Sprocess_SaveSendCardPara";
  if (store().loadStates.screen.failed()) {
    PARLEND_TRACE(kError) << "=== " << kCaller
                          << " ===the screen parameters could not be loaded and are not saved.";
    return;
  }
  std::array<uint8_t, kScreenParaSaved> bytes{};
  snapshot(store(), store().ScreenParaReg, 0, bytes);
  writeFlash(flash::kScreenPara, bytes, kCaller);
}

}  // namespace

int Tprocess::Sprocess_SaveSendCardPara(int, char*) {
  return handleCommand<SaveSendCardParaKey>([] {
    CMutexGuardT<CMutexThreadRecursive> guard(store().m_mutex);
    loadWhatIsMissing(store());
    if (store().LEDConfigStatus == shortcut::kByTables) storeConfigStatus(shortcut::kByTables);
    saveScreenPara();
    store().SaveParaToFlash(1);
  });
}

int Tprocess::Sprocess_ReloadSendCardProgram(int, char*) {
  return handleCommand<ReloadSenderFPGAKey>([] {
    CMutexGuardT<CMutexThreadRecursive> guard(store().m_mutex);
    if (store().RebootRF == ResetState::kIdle) return store().RestoreFPGA();
    // The restore would end the reset.
    PARLEND_TRACE(kError)
        << "=== Sprocess_ReloadSendCardProgram ===a factory reset is due, nothing is restored.";
  });
}

int Tprocess::Sprocess_CalculateParaOfSender(int lenth, char* data) {
  return handleRecord<CalculateParaOfSenderKey>(lenth, data, shortcut::kUsedSize,
                                                [](std::span<const uint8_t> record) {
                                                  logRecord(record);
                                                  submit(record);
                                                });
}

int Tprocess::Sprocess_AdvCalcParaOfSender(int lenth, char* data) {
  return handleRecord<AdvCalcParaOfSenderKey>(lenth, data, 0, [](std::span<const uint8_t>) {
    CMutexGuardT<CMutexThreadRecursive> guard(store().m_mutex);
    const auto screen = readAdvancedScreen();
    if (!screen) return;
    const FeatureDraft size = store().AdvCalcParaGetSreenSize(*screen);
    const bool mapped = store().AdvCalcParaOfSenderInMosaicMode(*screen, size) == 0;
    setConfigStatus(shortcut::kAdvanced);
    // What came before it and waits for its tick would replace it.
    if (mapped) store().forgetSubmissions();
  });
}

void Tprocess::CalculateParaOfSenderHandler() {
  constexpr char kBanner[] =
      "============================ 200Ms CalculateParaOfSenderHandler ===========================";
  Data_Global& global = store();
  // A submission that comes meanwhile waits, so that table and calculation belong to one record.
  CMutexGuardT<CMutexThreadRecursive> guard(global.m_mutex);
  const auto record = readRecord();
  global.GetRecvCardSize_EnvNew();
  global.SendRVCardWHtoLSD();
  global.ShortCfgReadRvStatus = 0;
  if (record) takeStored(*record);
  loadWhatIsMissing(global);
  MyTempParaCharTable[kTempRoleAt] = global.PbufMorSMode;  // a peer may have set it since
  PARLEND_TRACE(kInfo) << kBanner;
  global.CalculateParaOfSenderInMosaicMode(MyTempParaTable, MyTempParaCharTable);
  setConfigStatus(shortcut::kSmart);
  PARLEND_TRACE(kInfo) << "=== ScreenParaReg[0] " << global.ScreenParaReg[0]
                       << " [1]:" << global.ScreenParaReg[1] << " [2]:" << global.ScreenParaReg[2];
  PARLEND_TRACE(kInfo) << kBanner;
}

}  // namespace ORVE_MCUC
