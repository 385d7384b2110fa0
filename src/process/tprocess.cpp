#include "process/tprocess.h"

#include "calc/screenrecord.h"
#include "driverutil.h"
#include "hextext.h"
#include "maps/flashmap.h"
#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/fpgarestore.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

constexpr int kKeyLineRoom = 1536;
constexpr int kLongKeyLineRoom = 2304;
constexpr std::size_t kWritableScreenPara = 32;

Singleton<Tprocess>& holder() {
  // Never destroyed: the dispatcher's end, which comes later, still uses it.
  static Singleton<Tprocess>& instance = *new Singleton<Tprocess>;
  return instance;
}

void logEntry(const WorkKey& key) {
  PARLEND_TRACE(kInfo) << key.handler << " enter:";
}

template <int Room>
void logKeyText(const WorkKey& key, const PenetrateInfo& info) {
  const HexText<Room> text(info.data);
  PARLEND_TRACE(kInfo) << "Process key: " << key.name << "  Register: " << CTrace::hex << info.Register
                       << " len: " << info.length << " data:" << text.c_str();
}

void logScreenPara(int index) {
  PARLEND_TRACE(kInfo) << "====WriteToScreenInfoEcho=== 0210000" << index << " =0x" << CTrace::hex
                       << Data_Global::getInstance()->ScreenParaReg[static_cast<std::size_t>(index)];
}

}  // namespace

Tprocess* Tprocess::getInstance() {
  return holder().get([] { return new Tprocess; });
}
void Tprocess::deleteInstance() {
  holder().destroy();
}

std::optional<PenetrateInfo> unpackPenetrate(const char* payload, int length) {
  if (length < 0) return std::nullopt;
  ByteReader reader({reinterpret_cast<const uint8_t*>(payload), static_cast<std::size_t>(length)});
  const uint32_t address = reader.le32();
  const uint16_t count = reader.le16();
  const auto data = reader.bytes(count);
  if (!reader.ok()) return std::nullopt;
  return PenetrateInfo{address, count, data};
}

void logNoData(const WorkKey& key) {
  PARLEND_TRACE(kError) << "=== " << key.handler << " ===: data block is null! return.";
}

void logCutShort(const WorkKey& key, int length) {
  PARLEND_TRACE(kError) << "=== " << key.handler << " ===: a payload of " << length
                        << " bytes is shorter than it says! return.";
}

void logKeyLine(const WorkKey& key, const PenetrateInfo& info) {
  if (key.logsEntry) logEntry(key);
  if (!tracePasses(kInfo)) return;
  if (key.logsMore) {
    logKeyText<kLongKeyLineRoom>(key, info);
  } else {
    logKeyText<kKeyLineRoom>(key, info);
  }
}

int Tprocess::Sprocess_DoScreenInfoEcho(int lenth, char* data) {
  return handlePenetrate<DoScreenInfoEchoKey>(lenth, data, [](const PenetrateInfo& info) {
    Data_Global& store = *Data_Global::getInstance();
    CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
    loadWhatIsMissing(store);
    const std::size_t at = info.Register & 0xFF;
    const std::size_t room = at < kWritableScreenPara ? kWritableScreenPara - at : 0;
    putBytes(store, store.ScreenParaReg, at, info.data.first(std::min(room, info.data.size())));
    logScreenPara(0);
    logScreenPara(1);
  });
}

int Tprocess::Sprocess_DoBackupInfo(int lenth, char* data) {
  return handlePenetrate<DoBackupInfoKey>(lenth, data, [](const PenetrateInfo& info) {
    writeFlash(flash::ofBackupInfo(info.Register), info.data,
               {"WriteToBackupInfo", "Write backup info to flash failed. ret = "});
    DriverUtil::getInstance()->runCommand("sync");
  });
}

int Tprocess::Sprocess_DoSoftwareTable(int lenth, char* data) {
  return handlePenetrate<DoSoftwareTableKey>(lenth, data, [](const PenetrateInfo& info) {
    Data_Global& store = *Data_Global::getInstance();
    const CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
    if (info.Register < reg::kRoleTable) store.LEDConfigStatus = shortcut::kByTables;
    const int ret = store.CopyConstDataToFlash(flash::ofSoftwareTable(info.Register), info.data);
    if (ret != 0) {
      PARLEND_TRACE(kError) << "=== WriteToSoftwareTable ===Write to Page Program Failed. DriverRet = "
                            << ret;
    }
  });
}

}  // namespace ORVE_MCUC
