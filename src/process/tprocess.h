// The handlers of deferred work. Each is given an item's payload and its length, on the work thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace ORVE_MCUC {

class Tprocess {
 public:
  static Tprocess* getInstance();
  static void deleteInstance();

  static int Sprocess_SaveSendCardPara(int lenth, char* data);
  static int Sprocess_ReloadSendCardProgram(int lenth, char* data);
  static int Sprocess_CalculateParaOfSender(int lenth, char* data);
  static int Sprocess_AdvCalcParaOfSender(int lenth, char* data);
  static int Sprocess_DoScreenInfoEcho(int lenth, char* data);
  static int Sprocess_DoBackupInfo(int lenth, char* data);
  static int Sprocess_DoSoftwareTable(int lenth, char* data);
  static int Sprocess_SenderRGBGamma(int lenth, char* data);
  static int Sprocess_DoDoEDIDSpace(int lenth, char* data);
  static int Sprocess_RVConfigFileSpace(int lenth, char* data);

  // The screen mapping of the submissions that have come to rest; on the flag and status thread.
  static void CalculateParaOfSenderHandler();

  // Keys that nothing queues: they are logged.
  static int Sprocess_Correction(int lenth, char* data);
  static int Sprocess_SenderTestPatten(int lenth, char* data);
  static int Sprocess_ActiveReporting(int lenth, char* data);
  static int Sprocess_SendtoScanCard(int lenth, char* data);
  static int Sprocess_SendtoMultiCard(int lenth, char* data);
  static int Sprocess_SendtoDistribute(int lenth, char* data);
};

// A queued write as its handler sees it.
struct PenetrateInfo {
  uint32_t Register;
  uint16_t length;
  std::span<const uint8_t> data;  // length bytes
};

// Unpacks a payload; nothing when it is shorter than it says.
std::optional<PenetrateInfo> unpackPenetrate(const char* payload, int length);

// What a handler calls itself in its log lines.
struct HandlerWords {
  const char* handler;     // "Sprocess_DoBackupInfo"
  const char* key;         // "DoBackupInfoKey"
  bool logsEntry = false;  // "Sprocess_DoBackupInfo enter:" before the key line
};
// begin: "Begin" or "Finish".
void logBanner(const char* begin, const HandlerWords& words);
void logBegin(const HandlerWords& words, const PenetrateInfo& info);
void logNoData(const HandlerWords& words);
void logCutShort(const HandlerWords& words, int length);

// Null check, unpacking, banners and key line around the work of a handler, which takes a PenetrateInfo.
// Returns 0.
template <class Work>
int handlePenetrate(const HandlerWords& words, int length, const char* payload, Work work) {
  if (payload == nullptr) {
    logNoData(words);
    return 0;
  }
  const auto info = unpackPenetrate(payload, length);
  if (!info) {
    logCutShort(words, length);
    return 0;
  }
  logBegin(words, *info);
  work(*info);
  logBanner("Finish", words);
  return 0;
}

}  // namespace ORVE_MCUC
