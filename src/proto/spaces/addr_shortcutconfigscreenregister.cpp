#include "proto/spaces/addr_shortcutconfigscreenregister.h"

#include "calc/screenrecord.h"
#include "maps/flashmap.h"
#include "proto/store/data_common.h"
#include "proto/store/flashread.h"
#include "proto/store/mappingsteps.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{offsetRow(reg::kShortcutConfigScreen, "shortcut config screen info",
                                     "shortcut config screen info register", {1, 1500},
                                     &Addr_ShortcutConfigScreenRegister::DoShortcutConfigScreen),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

constexpr uint8_t kSubmitAdvanced = 0xB9;  // as the first byte of a write
constexpr uint16_t kVspReadLength = 38;    // a read of the record that VSP makes
constexpr std::size_t kCalculationFirst = 0x10;
constexpr std::size_t kCalculationLast = 0x1C;

uint32_t offsetOf(const IMD_proto3rd& request) {
  return request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
}

// VSP keeps a configuration of its own: it is answered in place of the record's.
int readForVsp(IMD_proto3rd& request) {
  DriverUtil& driver = *DriverUtil::getInstance();
  std::array<uint8_t, kVspReadLength> record{};
  if (driver.ReadBytesFromFlash(flash::kShortcutConfig, record.size(), record.data()) != 0) {
    PARLEND_TRACE(kError)
        << "=== WriteToNumberFunCardPort ===Read from ShortcutConfig Flash failed when reading flash! ";
  }
  std::array<uint8_t, 4> SmartLEDParaForVSP{};
  if (driver.ReadBytesFromFlash(flash::kShortcutForVsp, SmartLEDParaForVSP.size(),
                                SmartLEDParaForVSP.data()) != 0) {
    PARLEND_TRACE(kError)
        << "=== ReadFromShortcutConfigScreen ===Read ShortCutStoreForVSP from  Flash failed !!! ";
  }
  for (std::size_t i = 0; i < SmartLEDParaForVSP.size(); ++i) {
    PARLEND_TRACE(kInfo) << "SmartLEDParaForVSP[" << i << "] = " << SmartLEDParaForVSP[i];
  }
  record[shortcut::kStatusAt] = Data_Global::getInstance()->LEDConfigStatus;
  record[shortcut::kModeAt] = SmartLEDParaForVSP[0];
  record[shortcut::kRowsAt] = SmartLEDParaForVSP[1];
  record[shortcut::kColumnsAt] = SmartLEDParaForVSP[2];
  record[shortcut::kCardsPerPortAt] = SmartLEDParaForVSP[3];
  replyWith(request, record);
  return kDone;
}

int readRecord(IMD_proto3rd& request) {
  const uint32_t offset = offsetOf(request);
  if (offset == 0 && request.proto.m_usValidDataLength == kVspReadLength) return readForVsp(request);
  if (const int ret = replyFromFlash(request, flash::kShortcutConfig + offset)) {
    PARLEND_TRACE(kError) << "=== WriteToNumberFunCardPort ===read bytes from flash failed. driverRet = "
                          << ret;
    return kFailed;
  }
  auto& data = request.proto.m_data;
  if (offset == 0 && !data.empty()) data[0] = Data_Global::getInstance()->LEDConfigStatus;
  return kDone;
}

int writeRecordBytes(uint32_t offset, std::span<const uint8_t> data) {
  const int ret = DriverUtil::getInstance()->PageProgram(
      0, flash::kShortcutConfig + offset, static_cast<unsigned short>(data.size()), data.data());
  if (ret == 0) return kDone;
  PARLEND_TRACE(kError) << "=== WriteToShortcutConfigScreen ===write to page program failed. driverRet = "
                        << ret;
  return kRefused;
}

// The cards are measured once for all the writes that come before the calculation.
void measureCardsOnce() {
  Data_Global& global = *Data_Global::getInstance();
  PARLEND_TRACE(kInfo)
      << "=========================== Ready GetRecvCardSize_Env ======= ShortCfgReadRvStatus:"
      << global.ShortCfgReadRvStatus;
  if (global.ShortCfgReadRvStatus != 0) return;
  global.ShortCfgReadRvStatus = 1;
  global.GetRecvCardSize_EnvNew();
  global.SendRVCardWHtoLSD();
}

void logExpectedSplit(std::span<const uint8_t> record, const SmartScreen& screen) {
  if (!tracePasses(kInfo)) return;
  PARLEND_TRACE(kInfo) << "buff_new[0x16~0x19] = " << record[shortcut::kRowsAt] << " "
                       << record[shortcut::kColumnsAt] << " " << record[shortcut::kCardsPerPortAt] << " "
                       << record[shortcut::kCardsPerPortAt + 1];
  logPortLoad(screen, splitOf(screen));
}

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_ShortcutConfigScreenRegister::cmd_tblOffset = kRows;
uint8_t Addr_ShortcutConfigScreenRegister::m_cfgScreenFlag = shortcut::kSmart;
uint8_t Addr_ShortcutConfigScreenRegister::m_advCfgSubmit = 0;

void Addr_ShortcutConfigScreenRegister::prepare() {
  TempAdvCfgPortRow.fill(1);
  TempAdvCfgPortCol.fill(1);
}

int Addr_ShortcutConfigScreenRegister::DoShortcutConfigScreen(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  PARLEND_TRACE(kInfo) << "======================== Begin DoShortcutConfigScreen ========================";
  const int result = readOrWrite(msgIMD, &ReadFromShortcutConfigScreen, &WriteToShortcutConfigScreen);
  if (result == kRefused && msgIMD != nullptr) msgIMD->proto.m_ucAck = kAckRefused;
  return result;
}

int Addr_ShortcutConfigScreenRegister::ReadFromShortcutConfigScreen(IMD_proto3rd* msgIMD) {
  PARLEND_TRACE(kInfo) << "======================== Begin Read ShortCut Config Info ========================";
  const int result = readRecord(*msgIMD);
  PARLEND_TRACE(kInfo) << "======================== Finish Read ShortCut Config Info =======================";
  return result;
}

int Addr_ShortcutConfigScreenRegister::WriteToShortcutConfigScreen(IMD_proto3rd* msgIMD) {
  PARLEND_TRACE(kInfo) << "======================== Begin Write ShortCut Config Info =======================";
  int result = kRefused;
  if (msgIMD == nullptr) {
    PARLEND_TRACE(kError) << "=== IMD_proto3rd ===:, msgIMD is invalid, return.";
  } else {
    result = msgIMD->proto.m_data.empty() ? int{kDone} : writeRecord(*msgIMD);
  }
  PARLEND_TRACE(kInfo) << "======================== Finish Write ShortCut Config Info ======================";
  return result;
}

int Addr_ShortcutConfigScreenRegister::writeRecord(IMD_proto3rd& request) {
  const std::span<const uint8_t> data = request.proto.m_data;
  const uint32_t offset = offsetOf(request);
  const bool submits = data[0] == kSubmitAdvanced;
  if ((offset & 0xFF) == 0) {
    if (submits) {
      m_advCfgSubmit = 1;
    } else {
      PARLEND_TRACE(kInfo) << "   m_cfgScreenFlag =  " << m_cfgScreenFlag;
    }
    PARLEND_TRACE(kInfo) << "\t buff[0] = " << data[0];
  }
  int result = kDone;
  if (!submits) {
    PARLEND_TRACE(kInfo) << "ShortcutConfigScreenRegister Strage Lenth:" << request.proto.m_usValidDataLength;
    if (offset + data.size() < shortcut::kRecordSize &&
        Data_Global::getInstance()->TmpCalcScreenPara.copyFrom(data, offset)) {
      PARLEND_TRACE(kInfo) << "ShortcutConfig memcpy ";
    }
    result = writeRecordBytes(offset, data);
  }
  if (offset >= kCalculationFirst && offset <= kCalculationLast) {
    if (const int refused = submitSmart(request)) return refused;
  } else if (offset < shortcut::kPortsAt || offset > shortcut::kPortsLast) {
    PARLEND_TRACE(kInfo) << "cfg screen flag = " << m_cfgScreenFlag;
  } else if (!submits) {
    ParseAdvCfgScreen(request.proto.m_uiRegisterUnitAddress, data);
  }
  if (m_advCfgSubmit != 0) {
    m_advCfgSubmit = 0;
    constexpr uint8_t kSubmitted[] = {1};
    if (const int refused =
            queuePayload(request, AdvCalcParaOfSenderKey, "AdvCalcParaOfSenderKey", kSubmitted))
      return refused;
  }
  return result;
}

int Addr_ShortcutConfigScreenRegister::submitSmart(IMD_proto3rd& request) {
  std::array<uint8_t, shortcut::kRecordSize> record{};
  const int ret = DriverUtil::getInstance()->ReadBytesFromFlash(flash::kShortcutConfig, shortcut::kUsedSize,
                                                                record.data());
  if (ret != 0) {
    PARLEND_TRACE(kError) << "=== WriteToShortcutConfigScreen ===read bytes from flash failed. driverRet = "
                          << ret;
    return kRefused;
  }
  const SmartScreen screen =
      shortcut::smartScreenOf(std::span<const uint8_t>(record).first<shortcut::kUsedSize>());
  if (screen.rows == 0 || screen.columns == 0 || screen.cardsPerPort == 0) {
    PARLEND_TRACE(kError) << "=== WriteToShortcutConfigScreen ===Check Para stage: Para invalid! Row = "
                          << screen.rows << " Colume = " << screen.columns
                          << " Box Number = " << record[shortcut::kCardsPerPortAt];
    return kRefused;
  }
  measureCardsOnce();
  logExpectedSplit(record, screen);
  const int stored = writeRecordBytes(0, record);
  PARLEND_TRACE(kInfo) << "Para is OK. Continue...";
  const int queued = queuePayload(request, CalculateParaOfSenderKey, "CalculateParaOfSenderKey", record);
  return queued != kDone ? queued : stored;
}

int Addr_ShortcutConfigScreenRegister::ParseAdvCfgScreen(uint32_t address, std::span<const uint8_t> data) {
  const std::size_t offset = (address & reg::kOffsetMask) - shortcut::kPortsAt;
  const std::size_t port = offset / shortcut::kPortSize;
  const std::size_t field = offset % shortcut::kPortSize;
  PARLEND_TRACE(kInfo) << "port num = " << port << " offset = " << field;
  if (port >= kMappedPorts) return 0;  // kept in flash only
  switch (field) {
    case shortcut::kPortModeAt:
      TempAdvPortCM[port] = data[0];
      break;
    case shortcut::kPortRowsAt:
      TempAdvCfgPortRow[port] = data[0];
      break;
    case shortcut::kPortColumnsAt:
      TempAdvCfgPortCol[port] = data[0];
      break;
    case shortcut::kPortXAt:
      if (data.size() >= 2) TempAdvCfgPortX[port] = le16(data);
      break;
    case shortcut::kPortYAt:
      if (data.size() >= 2) TempAdvCfgPortY[port] = le16(data);
      break;
    default:
      break;
  }
  return 0;
}

}  // namespace ORVE_MCUC
