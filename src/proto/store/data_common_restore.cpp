// Rebuilding the FPGA's state from flash.
#include <algorithm>
#include <cstdlib>

#include "driverutil.h"
#include "envstore.h"
#include "hextext.h"
#include "logwords.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/imageload.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "proto/store/smarttable.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "RestoreFPGA";
constexpr int kNumberTextRoom = 3 * 768 + 1;

void readConfigStatus(Data_Global& store, const char* logLine) {
  uint8_t status = 0;
  if (readFlash(flash::kShortcutConfig, {&status, 1},
                {kCaller, "the configuration status cannot be read. ret = "}) == 0) {
    store.LEDConfigStatus = status;
  }
  PARLEND_TRACE(kInfo) << logLine << store.LEDConfigStatus;
}

// What the environment says of this start.
enum class Boot { Normal, AfterFactoryReset };
Boot readFirstBoot() {
  const OpenStore environment;
  if (!environment) return Boot::Normal;
  const char* value = sysconf_getenv("firstboot");
  if (value == nullptr) {
    PARLEND_TRACE(kInfo) << "Read firstboot env is Null. ";
    return Boot::Normal;
  }
  if (std::strtol(value, nullptr, 10) == 1) return Boot::AfterFactoryReset;
  PARLEND_TRACE(kInfo) << "=======Reboot parlend============";
  DriverUtil::getInstance()->runCommand("sysconfig set firstboot 0");
  return Boot::Normal;
}

bool isSize(uint32_t pixels) {
  return pixels <= 0xFFFF;
}

// The reset left the size of the receiving cards in the place of the screen's; a zero among them is taken as
// it is, and the mapping refuses it. Without a size there the default stays, and so does what is stored.
void takeCardSizeOfReset(Data_Global& store) {
  constexpr uint32_t kUnread = 0xFFFFFFFF;
  uint32_t screen[2] = {kUnread, kUnread};
  uint32_t card[2] = {};
  store.Read_ScreenSize_FromFlash(screen);
  read_CardSize_flag = store.Read_CardSize_FromFlash(card) == 0 ? 1U : 0U;
  factory_flag = 1U;
  if (isSize(screen[0]) && isSize(screen[1])) {
    RecvCardSize_befor[0] = screen[0];
    RecvCardSize_befor[1] = screen[1];
    store.ReceiveCardSize = CardSize{static_cast<uint16_t>(screen[0]), static_cast<uint16_t>(screen[1])};
    std::array<uint8_t, 8> record{};
    putLe32(record, 0, screen[0]);
    putLe32(record, 4, screen[1]);
    writeFlash(flash::kScreenSize, record, kCaller);
  }
  resetScreenChangeCounter(kCaller);
  const CardSize size = store.ReceiveCardSize;
  FeatureDraft draft;
  putOutputSize(draft, size.width, size.height);
  putFeature(store, draft);
  store.DebugForScreenZero(6, 0, "RestoreFPGA, use ReceiveCardWidth change screen!!");
  store.Read_ScreenSize_FromFlash(screen);  // says so when what is stored now is zero
}

// A screen of one card, by the master.
void mapOneCard(Data_Global& store) {
  ByteImage<1024> table;
  ByteImage<32> chars;
  putScreen(table, chars, {1, 1, 1, 0, {}});
  store.CalculateParaOfSenderInMosaicMode(table, chars);
}

// The mapping saves all tables; what it leaves of them stays as the reset left it.
void loadTables(RegisterImages& images) {
  for (unsigned port = 0; port < kMappedPorts; ++port) loadPortTable(images, port);
  loadNumberTable(images);
}

void restoreFirstBoot(Data_Global& store) {
  PARLEND_TRACE(kInfo) << "=======Reboot after ReturnFactory === RestoreFPGA    ";
  takeCardSizeOfReset(store);
  loadTables(store);
  const bool online = isOnline(store);
  if (online) {
    DriverUtil::getInstance()->runCommand("sysconfig set firstboot 0");
    PARLEND_TRACE(kInfo) << "=======Recover smart LED configure when Reboot after ReturnFactory.";
    mapOneCard(store);
    readConfigStatus(store, "=======Recover software LED configure when boot ! LEDConfigStatus = ");
    store.SendMStoLSD1_4();
    store.SendMStoLSD5_8();
    store.SendMStoLSD9_16();
  }
  PARLEND_TRACE(kInfo) << " No set 10bit 位深";
  PARLEND_TRACE(kInfo) << "=======Finish Restore FPGA When FirstBoot after ReturnFactory ============";
  if (online) store.FpgaParaLoadFinish = true;
}

void restorePortTables(RegisterImages& images, bool online) {
  PARLEND_TRACE(kInfo) << "Restore position para to FPGA :";
  for (unsigned int port = 0; port < kMappedPorts; ++port) {
    PARLEND_TRACE(kInfo) << "Port number = " << port;
    const int ret = loadPortTable(images, port);
    PARLEND_TRACE(kInfo) << "Read from flash, the ret = " << ret;
    if (online) restorePortTable(images, port);
  }
}

void loadAndLogNumberTable(RegisterImages& images) {
  PARLEND_TRACE(kInfo) << "Restore number para to FPGA";
  loadNumberTable(images, {kCaller, "the number table cannot be read. ret = "});
  if (tracePasses(kInfo)) {
    const auto table = VsPartPara.bytes();
    PARLEND_TRACE(kInfo) << "VsPartPara >>>" << HexText<kNumberTextRoom>(table).view();
  }
}

void closeOutput(Data_Global& store) {
  constexpr uint8_t kClosed = 0;
  writeThrough(store, store.SendParameterReg, fpga::kOutputEnable, fpga::kOutputEnable, {&kClosed, 1},
               {kCaller, "the output was not closed."});
  store.SendParameterReg[fpga::kOutputEnable] = fpga::kOutputRestored;
}

void restoreConfigured(Data_Global& store) {
  const bool online = isOnline(store);
  mendFeature(store);
  if (online) restoreFeature(store);
  factory_flag = 0U;
  PARLEND_TRACE(kInfo) << "Recover software LED configure when boot.";
  readConfigStatus(store, "=======Recover software LED configure when boot ! LEDConfigStatus = ");
  restorePortTables(store, online);
  loadAndLogNumberTable(store);
  if (online) {
    restoreNumberTable(store);
    closeOutput(store);
    resetScreenChangeCounter(kCaller);
    store.FpgaParaLoadFinish = store.restoredParts.all();
  }
  store.DebugForScreenZero(20, 0, "RestoreFPGA, Device Power on !!");
  loadScreenPara(store, {kCaller, "the screen parameters cannot be read. ret = "});
}

}  // namespace

void Data_Global::BootRecover() {
  loadRole(*this, {"BootRecover", "Can not read flash when get the PbufMorSMode in poweron! "});
  if (isOnline(*this)) {
    uint8_t mark = 0;
    readFpga(fpga::kBackupMark, {&mark, 1});
    const bool marked = mark == fpga::kMasterMark || mark == fpga::kSlaveMark;
    NormalBackupStatus = marked ? 0 : 1;
  }
  if (loadScreenPara(
          *this, {"BootRecover", "Can not read flash when get the ScreenParaReg[0x01] in poweron! "}) != 0) {
    return;
  }
  for (std::size_t i = 0; i < screenpara::kStored; ++i) {
    PARLEND_TRACE(kInfo) << "====BootRecover=== after read flash 0210000" << i << " =0x" << CTrace::hex
                         << ScreenParaReg[i];
  }
}

void Data_Global::RestoreFPGA() {
  const LogSection section(
      {"============================== Begin Restore FPGA ===============================",
       "============================== Finish Restore FPGA =============================="});
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  if (const int ret = loadFeature(*this))
    PARLEND_TRACE(kError) << "=== RestoreFPGA ===the feature parameters cannot be read. ret = " << ret;
  loadGlobal(*this, {kCaller, "the parameter table cannot be read. ret = "});
  RebootRF = kIdle;
  PARLEND_TRACE(kInfo) << "Restore Feature FPGA Space:";
  BootRecover();
  PARLEND_TRACE(kInfo) << "Restore DVI size:";
  if (readFirstBoot() == Boot::AfterFactoryReset) {
    restoreFirstBoot(*this);
  } else {
    restoreConfigured(*this);
  }
  if (isOnline(*this)) readHardwareStatus(*this);
}

}  // namespace ORVE_MCUC
