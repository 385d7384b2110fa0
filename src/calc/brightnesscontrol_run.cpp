// What the periods of the poll call: nodes, gradual changes, re-send and watchdog.
#include <utility>

#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {
namespace {

using Note = BrightnessNote;

constexpr int kStepPauseMs = 50;
constexpr int kStepsOfNodeCheck = 40;  // two seconds

}  // namespace

bool BrightnessControl::loaded() const {
  const std::lock_guard guard(lock_);
  return loaded_;
}

bool BrightnessControl::overtaken(uint32_t plan) const {
  const std::lock_guard guard(lock_);
  return plan_ != plan;
}

void BrightnessControl::applyPorts(const ProgrammableNode& node) {
  for (uint8_t port = 0; port < brightness::kNodePortCount; ++port) {
    if ((node.ports >> port & 1) == 0) continue;
    device_.sendBrightness(port, node.brightness, BrightnessReason::Timetable);
    if (node.withComponents) device_.sendComponents(port, node.components);
  }
}

// The node time check goes on meanwhile, so that no node is missed for a day. A factory reset ends the
// change, and so does a plan that starts meanwhile: its first brightness may have been overtaken by a step,
// hence once more.
void BrightnessControl::SmartAdjustGlobalBrightness(const BrightnessChange& change) {
  if (!change.stepwise || change.from == change.to) {
    device_.sendBrightness(kEveryPort, change.to, change.reason);
    return;
  }
  const uint32_t plan = locked([&](auto&) { return plan_; });
  const int direction = change.from < change.to ? 1 : -1;
  int steps = 0;
  for (int value = change.from; value != change.to;) {
    value += direction;
    device_.sendBrightness(kEveryPort, static_cast<uint8_t>(value), change.reason);
    device_.pause(kStepPauseMs);
    if (device_.resetRequested()) return;
    if (overtaken(plan)) {
      locked([](BrightnessSchedule& schedule) { schedule.applyAgain(); });
      return;
    }
    if (++steps % kStepsOfNodeCheck == 0) TimeToOver_Handler();
  }
}

void BrightnessControl::noteArmed(const ArmedNode& armed) {
  if (armed.firstAgain) device_.note(Note::FirstNodeAgain, {});
  device_.note(Note::Armed, {fromBcd(armed.time.hour), fromBcd(armed.time.minute)});
}

void BrightnessControl::carryOut(const NodeOutcome& outcome) {
  if (outcome.ports) applyPorts(*outcome.ports);
  if (outcome.armed) noteArmed(*outcome.armed);
  if (outcome.change) SmartAdjustGlobalBrightness(*outcome.change);
}

void BrightnessControl::SeiralComErrorProcess() {
  switch (locked([](BrightnessSchedule& schedule) { return schedule.watchSerial(); })) {
    case WatchOutcome::Nothing:
      return;
    case WatchOutcome::Unblack:
      device_.note(Note::BlackEnds, {});
      return device_.sendBlack(0x00);
    case WatchOutcome::Black:
      return device_.sendBlack(0xFF);
    case WatchOutcome::HandBack:
      return device_.note(Note::HandBack, {});
    case WatchOutcome::TakeOver:
      device_.note(Note::TakeOver, {});
      return initialise();
    case WatchOutcome::TakeOverAtStart:
      device_.note(Note::TakeOverAtStart, {});
      return initialise();
  }
}

void BrightnessControl::countSecond() {
  uint16_t interval = 0;
  const auto seconds = locked([&](BrightnessSchedule& schedule) {
    schedule.countResendSecond();
    interval = schedule.SensorReadInterval;
    return schedule.countSensorSecond();
  });
  if (seconds) device_.note(Note::SensorSecond, {*seconds, interval});
}

void BrightnessControl::TimeToOver_Handler() {
  const LocalMoment now = device_.now();
  int32_t node = 0;
  const TimeCheck check = locked([&](BrightnessSchedule& schedule) {
    node = schedule.RtcIndex;
    return schedule.TimeToOver(now);
  });
  if (check.coming) device_.note(Note::TimeComing, {});
  if (check.fired) device_.note(Note::TimeGone, {node});
}

void BrightnessControl::startAutomaticReading() {
  const bool starts = locked([](BrightnessSchedule& schedule) {
    if (schedule.AutoBrightnessAdjustEnable != kActive) return false;
    schedule.AutoBrightnessAdjustArrived = kActive;
    return true;
  });
  if (starts) device_.note(Note::AutomaticPeriod, {});
}

void BrightnessControl::ProgrammableBrightnessAdjust() {
  if (!locked([](BrightnessSchedule& schedule) { return schedule.programmableNodeDue(); })) return;
  const LocalMoment now = device_.now();
  carryOut(locked([&](BrightnessSchedule& schedule) {
    // Looked at once more: the mode may have changed since.
    return schedule.programmableNodeDue() ? schedule.runProgrammableNode(now) : NodeOutcome{};
  }));
}

void BrightnessControl::runMixedNode() {
  if (locked([&](BrightnessSchedule& schedule) {
        return std::exchange(startIsDue_, false) && schedule.MixBrightnessAdjustEnable == kActive;
      }))
    initialise();
  if (!locked([](BrightnessSchedule& schedule) { return schedule.mixedNodeDue(); })) return;
  const LocalMoment now = device_.now();
  NodeOutcome outcome;
  withFile([&](BrightnessSchedule& schedule, const File& file) {
    if (schedule.mixedNodeDue()) outcome = schedule.runMixedNode(file, now);
  });
  carryOut(outcome);
}

void BrightnessControl::MixBrightnessAdjust() {
  runMixedNode();
  runMixedReading();
  if (const auto again = locked([](BrightnessSchedule& schedule) { return schedule.resend(); }))
    SmartAdjustGlobalBrightness(*again);
}

}  // namespace ORVE_MCUC
