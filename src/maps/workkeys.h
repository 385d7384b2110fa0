// The keys of deferred work and the payload that most of it carries.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "maps/tables.h"

namespace ORVE_MCUC {

enum _ValueChanged_Table : int32_t {
  HwBasicinfoKey = 0,
  ControllerSortKey = 1,  // has no handler
  SaveSendCardParaKey = 2,
  ReturnFactorySetKey = 3,
  ReloadSenderFPGAKey = 4,
  DoFeatureInfoKey = 5,
  CorrectionKey = 6,
  DoScreenInfoEchoKey = 7,
  HDR10Key = 8,
  HLGKey = 9,
  SenderTestPattenKey = 10,
  PictureQualityCalKey = 11,
  WarmUpKey = 12,
  DoBackupInfoKey = 13,
  CalculateParaOfSenderKey = 14,
  AdvCalcParaOfSenderKey = 15,
  PositionNetPortKey = 16,
  DoNumberFunCardPortKey = 17,
  DoSoftwareTableKey = 18,
  DoEDIDSpaceKey = 19,
  ActiveReportingKey = 21,
  SenderRGBGammaKey = 22,
  doAdjustBrightnessKey = 23,
  RVConfigFileSpaceKey = 24,
  ScreenPatternGenKey = 25,
  SendtoScanCardKey = 26,
  SendtoMultiCardKey = 27,
  SendtoDistributeKey = 28,
  SendCardMappingKey = 29,
};
using enum_Process_Key_Table = _ValueChanged_Table;
inline constexpr int32_t kUnusedWorkKey = 20;

// A key with the texts that its log lines use. They are exact, misspellings included: service tools search
// the logs for them.
struct WorkKey {
  enum_Process_Key_Table key;
  std::string_view name;
  std::string_view handler;
  bool logsEntry = false;  // the handler says that it was entered before it says what for
  bool logsMore = false;   // of longer data as well
};

// The keys that have a place in the dispatcher's table, in its order.
inline constexpr std::array kWorkKeys{
    WorkKey{HwBasicinfoKey, "HwBasicinfoKey", "Sprocess_BasicData"},
    WorkKey{SaveSendCardParaKey, "SaveSendCardParaKey", "Sprocess_SaveSendCardPara"},
    WorkKey{ReturnFactorySetKey, "ReturnFactorySetKey", "Sprocess_ReturnFactorySet"},
    WorkKey{ReloadSenderFPGAKey, "ReloadSenderFPGAKey", "Sprocess_ReloadSendCardProgram"},
    WorkKey{DoFeatureInfoKey, "DoFeatureInfoKey", "Sprocess_DoFeatureInfo"},
    WorkKey{CorrectionKey, "CorrectionKey", "Sprocess_Correction"},
    WorkKey{DoScreenInfoEchoKey, "DoScreenInfoEchoKey", "Sprocess_DoScreenInfoEcho"},
    WorkKey{HDR10Key, "HDR10Key", "Sprocess_HDR10"},
    WorkKey{HLGKey, "HLGKey", "Sprocess_HLG"},
    WorkKey{SenderTestPattenKey, "SenderTestPattenKey", "Sprocess_SenderTestPatten"},
    WorkKey{PictureQualityCalKey, "PictureQualityCalKey", "Sprocess_PictureQualityCal"},
    WorkKey{WarmUpKey, "WarmUpKey", "Sprocess_DisplayWarmUp"},
    WorkKey{DoBackupInfoKey, "DoBackupInfoKey", "Sprocess_DoBackupInfo", true},
    WorkKey{CalculateParaOfSenderKey, "CalculateParaOfSenderKey", "Sprocess_CalculateParaOfSender"},
    WorkKey{AdvCalcParaOfSenderKey, "AdvCalcParaOfSenderKey", "Sprocess_AdvCalcParaOfSender"},
    WorkKey{PositionNetPortKey, "PositionNetPortKey", "Sprocess_PositionNetPort", false, true},
    WorkKey{DoNumberFunCardPortKey, "DoNumberFunCardPortKey", "Sprocess_DoNumberFunCardPort"},
    WorkKey{DoSoftwareTableKey, "DoSoftwareTableKey", "Sprocess_DoSoftwareTable"},
    WorkKey{DoEDIDSpaceKey, "DoEDIDSpaceKey", "Sprocess_DoDoEDIDSpace"},
    WorkKey{ActiveReportingKey, "ActiveReportingKey", "Sprocess_ActiveReporting"},
    WorkKey{SenderRGBGammaKey, "SenderRGBGammaKey", "Sprocess_SenderRGBGamma"},
    WorkKey{doAdjustBrightnessKey, "doAdjustBrightnessKey", "Sprocess_doAdjustBrightness"},
    WorkKey{SendCardMappingKey, "SendCardMappingKey", "Sprocess_doMappingForSender"},
    WorkKey{RVConfigFileSpaceKey, "RVConfigFileSpaceKey", "Sprocess_RVConfigFileSpace"},
    WorkKey{ScreenPatternGenKey, "ScreenPatternGenKey", "Sprocess_ScreenPatternGen"},
    WorkKey{SendtoScanCardKey, "SendtoScanCardKey", "Sprocess_SendtoScanCard"},
    WorkKey{SendtoMultiCardKey, "SendtoMultiCardKey", "Sprocess_SendtoMultiCard"},
    WorkKey{SendtoDistributeKey, "SendtoDistributeKey", "Sprocess_SendtoDistribute"},
};

constexpr std::size_t placeOf(enum_Process_Key_Table key) {
  std::size_t place = 0;
  while (place < kWorkKeys.size() && kWorkKeys[place].key != key) ++place;
  return place;
}

// The row of a key that has one.
template <enum_Process_Key_Table key>
inline constexpr const WorkKey& workKey = kWorkKeys[placeOf(key)];

// Every key but the one without a handler and the number that was never given has its row, and one only.
constexpr bool workKeysAreComplete() {
  for (int32_t key = HwBasicinfoKey; key <= SendCardMappingKey; ++key) {
    const bool expected = key != ControllerSortKey && key != kUnusedWorkKey;
    const bool found = placeOf(enum_Process_Key_Table{key}) < kWorkKeys.size();
    if (found != expected) return false;
  }
  return allDiffer(kWorkKeys, &WorkKey::key) && allDiffer(kWorkKeys, &WorkKey::handler);
}
static_assert(workKeysAreComplete());

// PenetrateInfo as it lies in a work item: register address u32, length u16, then the written bytes.
inline constexpr int kPenetrateHeadLength = 6;
// What fits behind the head into a work item of 65535 bytes.
inline constexpr int kPenetrateDataMax = 65529;

}  // namespace ORVE_MCUC
