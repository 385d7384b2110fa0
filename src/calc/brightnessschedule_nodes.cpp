// The node cycle: find the node in force, apply it, wait for the next.
#include <algorithm>

#include "calc/brightnessschedule.h"

namespace ORVE_MCUC {
namespace {

constexpr int64_t kDay = int64_t{24} * 60 * 60;
constexpr int64_t kMinute = 60;
constexpr int kWindow = 4;  // seconds into its minute that a node is seen
// Clocks are set by peers and by daylight saving. A step back of less than this leaves the cycle as it is.
constexpr int64_t kLargeStep = int64_t{2} * 60 * 60;
// A clock that was set has to stay where it is for a minute of checks before the plan follows.
constexpr uint32_t kSettledChecks = 30;

}  // namespace

// A plan may have shrunk since it was started.
int BrightnessSchedule::nodesOf(int stored) const {
  return std::min<int>(stored, std::max<int32_t>(ProgrammableAdjustPartNum, 1));
}

void BrightnessSchedule::arm(NodeTime time, bool anotherNode, const LocalMoment& now) {
  TimeIntHour = time.hour;
  TimeIntMin = time.minute;
  INT_Once = kArmed;
  passedChecks_ = 0;
  armedAt_ = secondsOf(now);
  const int64_t minute = armedAt_ - now.second;
  dueAt_ = minute - (now.hour * 60 + now.minute) * kMinute +
           (fromBcd(time.hour) * 60 + fromBcd(time.minute)) * kMinute;
  if (dueAt_ < minute || (dueAt_ == minute && !anotherNode)) dueAt_ += kDay;
  armedAtUtc_ = armedAt_ - now.utcOffset;
  dueAtUtc_ = dueAt_ - now.utcOffset;
}

// Nodes whose time no clock shows are passed by: waiting for one would end the cycle.
template <class Nodes>
std::optional<ArmedNode> BrightnessSchedule::InsertInterruptTimeToQueue(const Nodes& nodes,
                                                                        const LocalMoment& now) {
  const int count = nodesOf(nodes.count());
  const int32_t before = RtcIndex;
  bool firstAgain = false;
  for (int tried = 0; tried < count; ++tried) {
    const bool wraps = RtcIndex < 0 || RtcIndex >= count - 1;
    RtcIndex = wraps ? 0 : RtcIndex + 1;
    firstAgain = firstAgain || wraps;
    const auto time = nodes.time(RtcIndex);
    if (!time || !time->comes()) continue;
    arm(*time, RtcIndex != before, now);
    return ArmedNode{*time, firstAgain};
  }
  INT_Once = kNotArmed;
  return {};
}

NodeOutcome BrightnessSchedule::BrightnessAdjustInit(std::span<const uint8_t> file, const LocalMoment& now) {
  forgetEvents();
  NodeOutcome outcome;
  if (ProgrammableAdjustEnable == kActive) {
    const ProgrammableNodes nodes(ProgrammableTimeTableArray);
    ProgrammableAdjustPartNum = nodes.count();
    RtcIndex = CurrentTimeBelongToWhichNode(nodes, now);
    outcome.ports = nodes[RtcIndex];
    outcome.armed = InsertInterruptTimeToQueue(nodes, now);
  } else if (AutoBrightnessAdjustEnable == kActive) {
    AutoBrightnessAdjustCnt = 0;
  } else if (MixBrightnessAdjustEnable == kActive) {
    if (MixBriAdjustControl == kActive) outcome = startMixedNodes(file, now);
  } else if (SerialCtrlScreenBlackEnable == kActive || HardwareCtrlAdjustEnable == kActive) {
    TIM2_PeriodCnt = 0;
  }
  return outcome;
}

NodeOutcome BrightnessSchedule::startMixedNodes(std::span<const uint8_t> file, const LocalMoment& now) {
  readMixedHeader();
  MixAutoBriAdjustEnable = BriBroadcastEnable = BriBroadcastArrived = kInactive;
  const MixedNodes nodes(file, TimeNodeBaseAddr);
  ProgrammableAdjustPartNum = nodes.count();
  Index = MixAdjCurrentTimeNode(nodes, now);
  RtcIndex = Index;
  NodeOutcome outcome;
  const auto node = nodes[Index];
  if (!node) return outcome;
  outcome.searched = true;
  if (node->takesEffectOn(now.weekday)) {
    if (node->ambient)
      enterAmbientSlot();
    else
      outcome.change = enterFixedSlot(node->percent, true);
  } else if (node->enabled == 1) {
    MixBriAdjOccured = kInactive;
  }
  outcome.armed = InsertInterruptTimeToQueue(nodes, now);
  return outcome;
}

void BrightnessSchedule::enterAmbientSlot() {
  BriBroadcastEnable = BriBroadcastArrived = kInactive;
  MixAutoBriAdjustEnable = kActive;
  resetSensorCounters();
}

BrightnessChange BrightnessSchedule::enterFixedSlot(uint8_t percent, bool atOnce) {
  MixAutoBriAdjustEnable = kInactive;
  AutoBrightnessAdjustCnt = 0;
  if (atOnce) MixBriAdjOccured = kInactive;
  BriBroadcastCnt = 0;
  BriBroadcastEnable = kActive;
  BriBroadcastArrived = kInactive;
  return changeTo(brightnessOf(percent), BrightnessReason::Timetable);
}

// By UTC the time has run on since the node was armed, but not as far as the node: the local clock repeats an
// hour, and the node has had its turn.
bool BrightnessSchedule::comesTooEarly(const LocalMoment& now) const {
  const int64_t utc = utcSecondsOf(now);
  return utc >= armedAtUtc_ && utc < dueAtUtc_ - kLargeStep;
}

bool BrightnessSchedule::passedOver(const LocalMoment& now) const {
  const int64_t local = secondsOf(now);
  return local >= dueAt_ + kMinute || local < armedAt_ - kLargeStep;
}

TimeCheck BrightnessSchedule::TimeToOver(const LocalMoment& now) {
  TimeCheck check;
  if (toBcd(now.hour) == TimeIntHour && toBcd(now.minute) == TimeIntMin && now.second < kWindow) {
    if (INT_Once == kArmed && comesTooEarly(now)) return check;
    check.coming = true;
    INT_Once = INT_Once == kArmed ? 0 : kNotArmed;
  } else if (INT_Once == kArmed) {
    passedChecks_ = passedOver(now) ? passedChecks_ + 1 : 0;
    catchUp_ = passedChecks_ >= kSettledChecks;
    if (catchUp_) INT_Once = 0;
  }
  if (INT_Once == 0) {
    check.fired = true;
    RtcIntOccurArrived = kActive;
    INT_Once = kNotArmed;
  }
  return check;
}

bool BrightnessSchedule::programmableNodeDue() {
  if (ProgrammableAdjustEnable != kActive) return false;
  if (RtcIntOccurArrived == kActive) {
    RtcIntOccurArrived = kInactive;
    ProgrammableAdjustArrived = kActive;
  }
  return ProgrammableAdjustArrived == kActive;
}

NodeOutcome BrightnessSchedule::runProgrammableNode(const LocalMoment& now) {
  const ProgrammableNodes nodes(ProgrammableTimeTableArray);
  ProgrammableAdjustArrived = kInactive;
  if (catchUp_) RtcIndex = CurrentTimeBelongToWhichNode(nodes, now);
  catchUp_ = false;
  NodeOutcome outcome;
  outcome.ports = nodes[RtcIndex];
  outcome.armed = InsertInterruptTimeToQueue(nodes, now);
  return outcome;
}

bool BrightnessSchedule::mixedNodeDue() {
  if (MixBrightnessAdjustEnable != kActive) return false;
  if (RtcIntOccurArrived == kActive) {
    RtcIntOccurArrived = kInactive;
    ProgrammableAdjustArrived = kActive;
  }
  // Switched off the plan waits for nothing: it is started anew when it is switched on.
  if (MixBriAdjustControl != kActive) ProgrammableAdjustArrived = kInactive;
  return ProgrammableAdjustArrived == kActive;
}

NodeOutcome BrightnessSchedule::runMixedNode(std::span<const uint8_t> file, const LocalMoment& now) {
  const MixedNodes nodes(file, TimeNodeBaseAddr);
  ProgrammableAdjustArrived = kInactive;
  if (catchUp_) RtcIndex = MixAdjCurrentTimeNode(nodes, now);
  catchUp_ = false;
  NodeOutcome outcome;
  if (RtcIndex == kNoNode) return outcome;
  const auto node = nodes[RtcIndex];
  if (node && node->takesEffectOn(weekdayOfDate(now))) {
    if (node->ambient)
      enterAmbientSlot();
    else
      outcome.change = enterFixedSlot(node->percent, false);
  }
  outcome.armed = InsertInterruptTimeToQueue(nodes, now);
  return outcome;
}

void BrightnessSchedule::applyAgain() {
  if (!runsNodes()) return;
  catchUp_ = true;
  RtcIntOccurArrived = kActive;
}

}  // namespace ORVE_MCUC
