// The keys of deferred work and the payload that most of it carries.
#pragma once

#include <cstdint>

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

// PenetrateInfo as it lies in a work item: register address u32, length u16, then the written bytes.
inline constexpr int kPenetrateHeadLength = 6;
// What fits behind the head into a work item of 65535 bytes.
inline constexpr int kPenetrateDataMax = 65529;

}  // namespace ORVE_MCUC
