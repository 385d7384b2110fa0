// The handlers of deferred work. Each is given an item's payload and its length, on the work thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "logwords.h"
#include "maps/workkeys.h"

namespace ORVE_MCUC {

class Tprocess {
 public:
  static Tprocess* getInstance();
  static void deleteInstance();

  static int Sprocess_BasicData(int lenth, char* data);
  static int Sprocess_SaveSendCardPara(int lenth, char* data);
  static int Sprocess_ReturnFactorySet(int lenth, char* data);
  static int Sprocess_ReloadSendCardProgram(int lenth, char* data);
  static int Sprocess_DoFeatureInfo(int lenth, char* data);
  static int Sprocess_DoScreenInfoEcho(int lenth, char* data);
  static int Sprocess_HDR10(int lenth, char* data);
  static int Sprocess_HLG(int lenth, char* data);
  static int Sprocess_PictureQualityCal(int lenth, char* data);
  static int Sprocess_DisplayWarmUp(int lenth, char* data);
  static int Sprocess_DoBackupInfo(int lenth, char* data);
  static int Sprocess_CalculateParaOfSender(int lenth, char* data);
  static int Sprocess_AdvCalcParaOfSender(int lenth, char* data);
  static int Sprocess_PositionNetPort(int lenth, char* data);
  static int Sprocess_DoNumberFunCardPort(int lenth, char* data);
  static int Sprocess_DoSoftwareTable(int lenth, char* data);
  static int Sprocess_DoDoEDIDSpace(int lenth, char* data);
  static int Sprocess_SenderRGBGamma(int lenth, char* data);
  static int Sprocess_doAdjustBrightness(int lenth, char* data);
  static int Sprocess_doMappingForSender(int lenth, char* data);
  static int Sprocess_RVConfigFileSpace(int lenth, char* data);
  static int Sprocess_ScreenPatternGen(int lenth, char* data);

  // The screen mapping of the submissions that have come to rest; on the flag and status thread.
  static void CalculateParaOfSenderHandler();
};

// A queued write as its handler sees it.
struct PenetrateInfo {
  uint32_t Register;
  uint16_t length;
  std::span<const uint8_t> data;  // length bytes
};

// Unpacks a payload; nothing when it is shorter than it says.
std::optional<PenetrateInfo> unpackPenetrate(const char* payload, int length);

// The lines around a handler's work.
constexpr SectionWords handling(const WorkKey& key) {
  return {.begin = "============================ Begin ",
          .finish = "============================ Finish ",
          .what = key.handler,
          .rest = " ==========================="};
}
void logKeyLine(const WorkKey& key, const PenetrateInfo& info);
void logNoData(const WorkKey& key);
void logCutShort(const WorkKey& key, int length);

// A handler whose item carries nothing, or nothing that it uses: work(), between its two lines. Returns 0, as
// all of these do.
template <enum_Process_Key_Table key, class Work>
int handleCommand(Work work) {
  LogSection section(handling(workKey<key>));
  work();
  return 0;
}

// A handler of a record: work(bytes), of which there are at least that many. Without them nothing is done.
template <enum_Process_Key_Table key, class Work>
int handleRecord(int length, const char* payload, int atLeast, Work work) {
  if (payload == nullptr) {
    logNoData(workKey<key>);
    return 0;
  }
  if (length < atLeast) {
    logCutShort(workKey<key>, length);
    return 0;
  }
  const std::span bytes(reinterpret_cast<const uint8_t*>(payload), static_cast<std::size_t>(length));
  return handleCommand<key>([&] { work(bytes); });
}

// A handler of a register write: work(PenetrateInfo), after the line that says what was written.
template <enum_Process_Key_Table key, class Work>
int handlePenetrate(int length, const char* payload, Work work) {
  if (payload == nullptr) {
    logNoData(workKey<key>);
    return 0;
  }
  const auto info = unpackPenetrate(payload, length);
  if (!info) {
    logCutShort(workKey<key>, length);
    return 0;
  }
  return handleCommand<key>([&] {
    logKeyLine(workKey<key>, *info);
    work(*info);
  });
}

}  // namespace ORVE_MCUC
