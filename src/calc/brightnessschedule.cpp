// Modes, sensors, re-send and watchdog. The node cycle has a file of its own.
#include "calc/brightnessschedule.h"

#include <algorithm>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

namespace record = brightness;

constexpr uint32_t kAutomaticReadings = 6;
constexpr uint32_t kFaultsInARow = 2;  // more lead to the fallback
constexpr uint32_t kResendSeconds = 600;
constexpr uint8_t kMostReadTimes = 16;

}  // namespace

void BrightnessSchedule::clearModes() {
  ProgrammableAdjustEnable = AutoBrightnessAdjustEnable = MixBrightnessAdjustEnable = kInactive;
  SerialCtrlScreenBlackEnable = HardwareCtrlAdjustEnable = MixAutoBriAdjustEnable = kInactive;
}

void BrightnessSchedule::forgetEvents() {
  ProgrammableAdjustArrived = RtcIntOccurArrived = kInactive;
  catchUp_ = false;
  INT_Once = kNotArmed;
}

void BrightnessSchedule::resetSensorCounters() {
  AutoBrightnessAdjustCnt = SensorReadFaultCnt = SensorReadTimeCnt = 0;
}

void BrightnessSchedule::startMode() {
  MixBriAdjustGlobalControl = activeIf(ProgrammableTimeTableArray[record::kGlobalControl] != 0);
  GradualAdjustControl = activeIf(ProgrammableTimeTableArray[record::kGradual] != 0);
  clearModes();
  const bool control = MixBriAdjustGlobalControl == kActive;
  ProgrammableAdjustEnable = activeIf(mode() == record::kProgrammable);
  AutoBrightnessAdjustEnable = activeIf(mode() == record::kAutomatic);
  MixBrightnessAdjustEnable = activeIf(control && mode() == record::kMixed);
  SerialCtrlScreenBlackEnable = activeIf(control && mode() == record::kSerialBlack);
  HardwareCtrlAdjustEnable = activeIf(control && mode() == record::kHardware);
}

void BrightnessSchedule::startProgrammable() {
  clearModes();
  BriBroadcastEnable = BriBroadcastArrived = kInactive;
  ProgrammableAdjustEnable = kActive;
}

void BrightnessSchedule::startAutomatic() {
  clearModes();
  BriBroadcastEnable = BriBroadcastArrived = kInactive;
  AutoBrightnessAdjustEnable = kActive;
}

void BrightnessSchedule::BriAdjustModeProcess() {
  MixBriAdjustGlobalControl = activeIf(ProgrammableTimeTableArray[record::kGlobalControl] != 0);
  const bool control = MixBriAdjustGlobalControl == kActive;
  MixBriAdjustControl = activeIf(control && ProgrammableTimeTableArray[record::kControl] != 0);
  GradualAdjustControl = activeIf(ProgrammableTimeTableArray[record::kGradual] != 0);
  LastMixBriAdjustControl = MixBriAdjustControl;
  clearModes();
  if (!control) return;
  HardwareCtrlAdjustEnable = activeIf(mode() == record::kHardware);
  SerialCtrlScreenBlackEnable = activeIf(mode() == record::kSerialBlack);
  MixBrightnessAdjustEnable = activeIf(mode() != record::kHardware && mode() != record::kSerialBlack);
}

void BrightnessSchedule::stopAll() {
  clearModes();
  forgetEvents();
  AutoBrightnessAdjustArrived = BriBroadcastEnable = BriBroadcastArrived = kInactive;
  MixBriAdjustGlobalControl = MixBriAdjustControl = LastMixBriAdjustControl = kInactive;
  GradualAdjustControl = kInactive;
}

bool BrightnessSchedule::switchControl(bool on) {
  MixBriAdjustControl = activeIf(on);
  if (!on) BriBroadcastEnable = BriBroadcastArrived = kInactive;
  if (MixBriAdjustControl == LastMixBriAdjustControl) return false;
  LastMixBriAdjustControl = MixBriAdjustControl;
  return true;
}

void BrightnessSchedule::readMixedHeader() {
  const std::span<const uint8_t> header = ProgrammableTimeTableArray;
  SensorInfoBaseAddr = le16(header, record::kSensorBase);
  TimeNodeBaseAddr = le16(header, record::kTimeNodeBase);
  LuxMapBaseAddr = le16(header, record::kLuxMapBase);
  SensorValidBaseAddr = le16(header, record::kSensorValidBase);
  SensorReadInterval = le16(header, record::kReadInterval);
  SensorReadTimes = std::clamp(header[record::kReadTimes], uint8_t{1}, kMostReadTimes);
}

bool BrightnessSchedule::automaticReadingDue() const {
  return AutoBrightnessAdjustArrived == kActive && AutoBrightnessAdjustEnable == kActive;
}

std::optional<BrightnessSchedule::LinearUse> BrightnessSchedule::takeAutomaticReading(
    std::optional<uint16_t> lux) {
  AutoBrightnessAdjustArrived = kInactive;
  if (!lux) return {};
  AutoBrightnessAdjustCnt = std::min(AutoBrightnessAdjustCnt, kAutomaticReadings - 1);
  AutoBrightnessReadValTable[AutoBrightnessAdjustCnt++] = *lux;
  if (AutoBrightnessAdjustCnt < kAutomaticReadings) return {};
  AutoBrightnessAdjustCnt = 0;
  const auto average = SortAndAverage(std::span(AutoBrightnessReadValTable).first(kAutomaticReadings));
  if (!average) return {};
  LinearUse use{linearTable(ProgrammableTimeTableArray)};
  const auto brightness = LuxToBrightnessLookupTable(use.table, *average);
  if (!brightness) return use;
  LastGlobalBri = *brightness;
  use.change = BrightnessChange{*brightness, *brightness, false, BrightnessReason::Sensor};
  return use;
}

bool BrightnessSchedule::mixedReadingDue() const {
  return MixBrightnessAdjustEnable == kActive && AutoBrightnessAdjustArrived == kActive &&
         MixAutoBriAdjustEnable == kActive && MixBriAdjustControl == kActive;
}

uint16_t BrightnessSchedule::rereadSensorBase() {
  SensorInfoBaseAddr = le16(ProgrammableTimeTableArray, record::kSensorBase);
  return SensorInfoBaseAddr;
}

BrightnessSchedule::MixedDecision BrightnessSchedule::takeMixedReading(std::optional<uint16_t> lux) {
  AutoBrightnessAdjustArrived = kInactive;
  const uint32_t times = std::clamp(SensorReadTimes, uint8_t{1}, kMostReadTimes);
  AutoBrightnessAdjustCnt = std::min(AutoBrightnessAdjustCnt, times - 1);
  if (lux) {
    AutoBrightnessReadValTable[AutoBrightnessAdjustCnt++] = *lux;
    SensorReadFaultCnt = 0;
    if (AutoBrightnessAdjustCnt < times) return {};
    AutoBrightnessAdjustCnt = 0;
    return {.complete = true, .lux = SortAndAverage(std::span(AutoBrightnessReadValTable).first(times))};
  }
  ++SensorReadFaultCnt;
  if (++AutoBrightnessAdjustCnt >= times) AutoBrightnessAdjustCnt = 0;
  AutoBrightnessReadValTable[AutoBrightnessAdjustCnt] = kNoLux;
  if (SensorReadFaultCnt <= kFaultsInARow) return {};
  AutoBrightnessAdjustCnt = SensorReadFaultCnt = 0;
  return {.fallback = true};
}

// At once as long as the plan has set nothing; from then on in steps, if the plan wants them.
BrightnessChange BrightnessSchedule::changeTo(uint8_t brightness, BrightnessReason reason) {
  const bool stepwise = MixBriAdjOccured == kActive && GradualAdjustControl == kActive;
  const BrightnessChange change{LastGlobalBri, brightness, stepwise, reason};
  MixBriAdjOccured = kActive;
  LastGlobalBri = brightness;
  return change;
}

std::optional<BrightnessChange> BrightnessSchedule::resend() {
  if (MixBrightnessAdjustEnable != kActive || BriBroadcastArrived != kActive) return {};
  BriBroadcastArrived = kInactive;
  return BrightnessChange{LastGlobalBri, LastGlobalBri, false, BrightnessReason::Resend};
}

std::optional<uint32_t> BrightnessSchedule::countSensorSecond() {
  if (MixAutoBriAdjustEnable != kActive) return {};
  const uint32_t seconds = ++SensorReadTimeCnt;
  if (seconds < SensorReadInterval) return seconds;
  SensorReadTimeCnt = 0;
  AutoBrightnessAdjustArrived = kActive;
  return seconds;
}

void BrightnessSchedule::countResendSecond() {
  if (BriBroadcastEnable != kActive || ++BriBroadcastCnt < kResendSeconds) return;
  BriBroadcastCnt = 0;
  BriBroadcastArrived = kActive;
}

WatchOutcome BrightnessSchedule::watchSerial() {
  const bool heartbeat = DevComLinkState == kActive;
  DevComLinkState = kInactive;
  const uint32_t limit = UartDiscOvertime;
  const uint32_t seconds = TIM2_PeriodCnt;
  if (SerialCtrlScreenBlackEnable == kActive) {
    if (heartbeat) TIM2_PeriodCnt = 0;
    if (seconds > limit) return heartbeat ? WatchOutcome::Unblack : WatchOutcome::Black;
    if (!heartbeat) ++TIM2_PeriodCnt;
    return WatchOutcome::Nothing;
  }
  if (HardwareCtrlAdjustEnable != kActive) return WatchOutcome::Nothing;
  if (heartbeat) {
    TIM2_PeriodCnt = 0;
    if (seconds < limit) return WatchOutcome::Nothing;
    MixBrightnessAdjustEnable = MixAutoBriAdjustEnable = kInactive;
    return WatchOutcome::HandBack;
  }
  if (seconds == limit || seconds == limit + 1) {
    TIM2_PeriodCnt = limit + 2;
    MixBrightnessAdjustEnable = kActive;
    return seconds == limit ? WatchOutcome::TakeOver : WatchOutcome::TakeOverAtStart;
  }
  if (seconds < limit) ++TIM2_PeriodCnt;
  return WatchOutcome::Nothing;
}

}  // namespace ORVE_MCUC
