// The brightness control as a calculation: configuration bytes and a moment in, decisions out. It holds the
// state of the modes; it reads no clock, no flash and no sensor, and sends nothing. One thread at a time:
// whoever runs it holds a lock.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calc/brightnessnodes.h"
#include "calc/localmoment.h"
#include "calc/luxtable.h"
#include "maps/brightnessrecord.h"

namespace ORVE_MCUC {

enum enum_Active : uint8_t { kInactive = 0, kActive = 1 };
constexpr enum_Active activeIf(bool condition) {
  return condition ? kActive : kInactive;
}

enum class BrightnessReason : uint8_t { Timetable, Sensor, Fallback, Resend, Heartbeat };

// A brightness for all cards: at once, or from one value to the other a unit at a time.
struct BrightnessChange {
  uint8_t from = 0;
  uint8_t to = 0;
  bool stepwise = false;
  BrightnessReason reason = BrightnessReason::Timetable;
};

// The node that is waited for from here on.
struct ArmedNode {
  NodeTime time;
  bool firstAgain = false;  // after the last node
};

// What a node that has come, or the start of a mode, leads to.
struct NodeOutcome {
  std::optional<ProgrammableNode> ports;
  std::optional<BrightnessChange> change;
  std::optional<ArmedNode> armed;
  bool searched = false;  // among the slots of a mixed plan, and one was found
};

struct TimeCheck {
  bool coming = false;
  bool fired = false;
};

// What the serial watchdog wants done.
enum class WatchOutcome : uint8_t {
  Nothing,
  Unblack,   // the heartbeat is back
  Black,     // the heartbeat is missing
  HandBack,  // the external controller has the screen again
  TakeOver,  // the mixed plan starts because the heartbeat went missing
  TakeOverAtStart,
};

class BrightnessSchedule {
 public:
  std::array<uint8_t, brightness::kMirrorSize> ProgrammableTimeTableArray{};

  enum_Active ProgrammableAdjustEnable{};
  enum_Active AutoBrightnessAdjustEnable{};
  enum_Active MixBrightnessAdjustEnable{};
  enum_Active SerialCtrlScreenBlackEnable{};
  enum_Active HardwareCtrlAdjustEnable{};
  enum_Active MixAutoBriAdjustEnable{};  // the slot in force uses sensors
  enum_Active MixBriAdjustGlobalControl = kActive;
  enum_Active MixBriAdjustControl = kActive;
  enum_Active LastMixBriAdjustControl = kActive;
  enum_Active GradualAdjustControl = kActive;

  enum_Active ProgrammableAdjustArrived{};
  enum_Active AutoBrightnessAdjustArrived{};
  enum_Active RtcIntOccurArrived{};
  enum_Active BriBroadcastEnable{};
  enum_Active BriBroadcastArrived{};

  int32_t ProgrammableAdjustPartNum = 0;  // nodes
  int32_t RtcIndex = 0;                   // the node that is waited for
  uint16_t Index = 0;                     // the node found at the start of the mixed mode
  uint8_t TimeIntHour = 0;                // BCD, as the next
  uint8_t TimeIntMin = 0;
  uint8_t INT_Once = kNotArmed;
  uint16_t ConfigFileLength = 0;
  uint16_t TimeNodeBaseAddr = 0;
  uint16_t SensorInfoBaseAddr = 0;
  uint16_t LuxMapBaseAddr = 0;
  uint16_t SensorValidBaseAddr = 0;
  uint16_t SensorReadInterval = 0;  // seconds
  uint8_t SensorReadTimes = 0;      // readings of a decision, 1 to 16

  uint8_t LastGlobalBri = 0;
  enum_Active MixBriAdjOccured{};
  uint32_t BriBroadcastCnt = 0;  // seconds

  enum_Active DevComLinkState{};
  uint32_t TIM2_PeriodCnt = 0;  // seconds
  uint8_t UartDiscOvertime = 40;

  std::array<uint16_t, 16> AutoBrightnessReadValTable{};
  uint32_t AutoBrightnessAdjustCnt = 0;
  uint32_t SensorReadFaultCnt = 0;
  uint32_t SensorReadTimeCnt = 0;  // seconds

  // Modes.
  uint8_t mode() const { return ProgrammableTimeTableArray[brightness::kMode]; }
  bool runsNodes() const {
    return ProgrammableAdjustEnable == kActive || MixBrightnessAdjustEnable == kActive;
  }
  // The mode of the stored file, as the daemon starts.
  void startMode();
  void startProgrammable();
  void startAutomatic();
  void BriAdjustModeProcess();
  void stopAll();
  // The control switch; true when it has changed and the mode has to be initialised.
  bool switchControl(bool on);

  // The start of the mode in force.
  NodeOutcome BrightnessAdjustInit(std::span<const uint8_t> file, const LocalMoment& now);

  // Every two seconds. A clock that was set past the node that is waited for, or back by more than two hours,
  // leads to the node in force a minute later.
  TimeCheck TimeToOver(const LocalMoment& now);

  // Every second: whether a node has come, and what it leads to.
  bool programmableNodeDue();
  NodeOutcome runProgrammableNode(const LocalMoment& now);
  bool mixedNodeDue();
  NodeOutcome runMixedNode(std::span<const uint8_t> file, const LocalMoment& now);
  // The node in force is applied once more.
  void applyAgain();

  // Sensors: whether a reading is due, and what a reading (nothing: it failed) leads to.
  bool automaticReadingDue() const;
  // A use of the linear table, whether it gave a brightness or not.
  struct LinearUse {
    LinearTable table;
    std::optional<BrightnessChange> change{};
  };
  std::optional<LinearUse> takeAutomaticReading(std::optional<uint16_t> lux);
  bool mixedReadingDue() const;
  // A decision of the mixed mode: the average when enough readings have come together, or the fallback's
  // turn.
  struct MixedDecision {
    bool complete = false;
    bool fallback = false;
    std::optional<uint16_t> lux{};
  };
  uint16_t rereadSensorBase();
  MixedDecision takeMixedReading(std::optional<uint16_t> lux);
  BrightnessChange changeTo(uint8_t brightness, BrightnessReason reason);

  // Every ten minutes of a fixed slot.
  std::optional<BrightnessChange> resend();

  // Counts a second towards the next sensor reading: seconds so far, nothing in a slot without sensors.
  std::optional<uint32_t> countSensorSecond();
  void countResendSecond();

  WatchOutcome watchSerial();

 private:
  static constexpr uint8_t kArmed = 1;
  static constexpr uint8_t kNotArmed = 2;

  void clearModes();
  void forgetEvents();
  void resetSensorCounters();
  NodeOutcome startMixedNodes(std::span<const uint8_t> file, const LocalMoment& now);
  void readMixedHeader();
  template <class Nodes>
  std::optional<ArmedNode> InsertInterruptTimeToQueue(const Nodes& nodes, const LocalMoment& now);
  void arm(NodeTime time, bool anotherNode, const LocalMoment& now);
  bool comesTooEarly(const LocalMoment& now) const;
  bool passedOver(const LocalMoment& now) const;
  BrightnessChange enterFixedSlot(uint8_t percent, bool atOnce);
  void enterAmbientSlot();
  int nodesOf(int stored) const;

  int64_t armedAt_ = 0;  // local seconds, as the next
  int64_t dueAt_ = 0;
  int64_t armedAtUtc_ = 0;  // UTC seconds, as the next
  int64_t dueAtUtc_ = 0;
  uint32_t passedChecks_ = 0;
  bool catchUp_ = false;  // the clock was set: the node in force is to be found anew
};

}  // namespace ORVE_MCUC
