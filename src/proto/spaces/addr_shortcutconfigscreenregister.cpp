// Configuration of the screen: the record of a smart configuration, and the blocks of an advanced one. A
// window into the parameter flash whose writes start the calculations.
#include "calc/screenrecord.h"
#include "logwords.h"
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "proto/store/mappingsteps.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kVspReadLength = 38;  // a read of the record that VSP makes
constexpr std::size_t kCalculationFirst = 0x10;
constexpr std::size_t kCalculationLast = 0x1C;

constexpr uint8_t m_cfgScreenFlag = shortcut::kSmart;  // only its log lines use it

uint32_t offsetOf(const IMD_proto3rd& request) {
  return request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
}

// VSP keeps a configuration of its own: it is answered in place of the record's.
int readForVsp(IMD_proto3rd& request) {
  std::array<uint8_t, kVspReadLength> record{};
  readFlash(flash::kShortcutConfig, record,
            {"WriteToNumberFunCardPort", "Read from ShortcutConfig Flash failed when reading flash! "});
  std::array<uint8_t, 4> SmartLEDParaForVSP{};
  readFlash(flash::kShortcutForVsp, SmartLEDParaForVSP,
            {"ReadFromShortcutConfigScreen", "Read ShortCutStoreForVSP from  Flash failed !!! "});
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
  if (replyFromFlash(request, flash::kShortcutConfig + offset,
                     {"WriteToNumberFunCardPort", "read bytes from flash failed. driverRet = "}) != 0) {
    return kFailed;
  }
  auto& data = request.proto.m_data;
  if (offset == 0 && !data.empty()) data[0] = Data_Global::getInstance()->LEDConfigStatus;
  return kDone;
}

int writeRecordBytes(uint32_t offset, std::span<const uint8_t> data) {
  const int ret = writeFlash(flash::kShortcutConfig + offset, data,
                             {"WriteToShortcutConfigScreen", "write to page program failed. driverRet = "});
  return ret == 0 ? kDone : kRefused;
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

// Whether a write gives one of the ports a connection mode that does not exist, wherever the write begins.
bool namesUnknownMode(uint32_t offset, std::span<const uint8_t> data) {
  for (std::size_t port = 0; port < kMappedPorts; ++port) {
    const std::size_t at = shortcut::kPortsAt + port * shortcut::kPortSize + shortcut::kPortModeAt;
    if (at < offset || at - offset >= data.size() || data[at - offset] < kConnectionModes) continue;
    PARLEND_TRACE(kError) << "=== WriteToShortcutConfigScreen ===Check Para stage: Para invalid! Port = "
                          << port << " Mode = " << data[at - offset];
    return true;
  }
  return false;
}

// Stores one field of the advanced configuration, for the ports that are mapped.
void ParseAdvCfgScreen(uint32_t address, std::span<const uint8_t> data) {
  const std::size_t offset = (address & reg::kOffsetMask) - shortcut::kPortsAt;
  const std::size_t port = offset / shortcut::kPortSize;
  const std::size_t field = offset % shortcut::kPortSize;
  PARLEND_TRACE(kInfo) << "port num = " << port << " offset = " << field;
  if (port >= kMappedPorts) return;  // kept in flash only
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
}

int submitSmart(IMD_proto3rd& request) {
  std::array<uint8_t, shortcut::kRecordSize> record{};
  if (readFlash(flash::kShortcutConfig, std::span(record).first<shortcut::kUsedSize>(),
                {"WriteToShortcutConfigScreen", "read bytes from flash failed. driverRet = "}) != 0) {
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
  if (screen.mode >= kConnectionModes) {
    PARLEND_TRACE(kError) << "=== WriteToShortcutConfigScreen ===Check Para stage: Para invalid! Mode = "
                          << screen.mode;
    return kRefused;
  }
  measureCardsOnce();
  logExpectedSplit(record, screen);
  const int stored = writeRecordBytes(0, record);
  PARLEND_TRACE(kInfo) << "Para is OK. Continue...";
  const int queued = queuePayload<CalculateParaOfSenderKey>(request, record);
  return queued != kDone ? queued : stored;
}

int writeRecord(IMD_proto3rd& request) {
  const std::span<const uint8_t> data = request.proto.m_data;
  const uint32_t offset = offsetOf(request);
  const bool submits = data[0] == shortcut::kSubmitAdvanced;
  if ((offset & 0xFF) == 0) {
    if (!submits) PARLEND_TRACE(kInfo) << "   m_cfgScreenFlag =  " << m_cfgScreenFlag;
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
    if (namesUnknownMode(offset, data)) return kRefused;
  }
  if (offset >= kCalculationFirst && offset <= kCalculationLast) {
    if (const int refused = submitSmart(request)) return refused;
  } else if (offset < shortcut::kPortsAt || offset > shortcut::kPortsLast) {
    PARLEND_TRACE(kInfo) << "cfg screen flag = " << m_cfgScreenFlag;
  } else if (!submits) {
    ParseAdvCfgScreen(request.proto.m_uiRegisterUnitAddress, data);
  }
  if (submits && (offset & 0xFF) == 0) {
    constexpr uint8_t kSubmitted[] = {1};
    if (const int refused = queuePayload<AdvCalcParaOfSenderKey>(request, kSubmitted)) return refused;
  }
  return result;
}

constexpr SectionWords kReading{
    "======================== Begin Read ShortCut Config Info ========================",
    "======================== Finish Read ShortCut Config Info ======================="};
constexpr SectionWords kWriting{
    "======================== Begin Write ShortCut Config Info =======================",
    "======================== Finish Write ShortCut Config Info ======================"};

int ReadFromShortcutConfigScreen(IMD_proto3rd& request) {
  LogSection section(kReading);
  return readRecord(request);
}

int WriteToShortcutConfigScreen(IMD_proto3rd& request) {
  LogSection section(kWriting);
  return request.proto.m_data.empty() ? int{kDone} : writeRecord(request);
}

// The one space that tells its requester of every refusal.
int DoShortcutConfigScreen(IMD_proto3rd& request, const OffsetRow&) {
  PARLEND_TRACE(kInfo) << "======================== Begin DoShortcutConfigScreen ========================";
  const bool reads = request.proto.m_ucCode == kCodeRead;
  const int result = reads ? ReadFromShortcutConfigScreen(request) : WriteToShortcutConfigScreen(request);
  if (result == kRefused) request.proto.m_ucAck = kAckRefused;
  return result;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kShortcutConfigScreen>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kShortcutConfigScreen>({.handle = &DoShortcutConfigScreen, .entered = &logEntry});
  return kSpace;
}

}  // namespace ORVE_MCUC
