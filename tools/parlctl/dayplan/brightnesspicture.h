// What a brightness plan does over a day or a week: the daemon's own control, run on a wall in virtual time.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "brightnessplan.h"
#include "calc/brightnesspreview.h"

namespace parlctl {

class Plot;

// "timetable", "sensor", "fallback", "re-send", "heartbeat".
const char* reasonName(ORVE_MCUC::BrightnessReason reason);

// Light by the second of the day; none: it is not known.
using LightOfDay = std::function<uint16_t(int secondOfDay)>;
// One lux all day, or a file of lines "HH:MM LUX" between which the light changes evenly. Throws peer::Error
// (Usage).
LightOfDay lightFrom(const std::string& argument);

enum class SlotKind : uint8_t { None, Fixed, Ambient };

// A stretch of one kind, and what is sent in it. Seconds since the beginning.
struct SlotSpan {
  int from = 0;
  int to = 0;
  SlotKind kind = SlotKind::None;
  int slot = -1;  // of the plan; -1: none, or not told
};
struct SentStep {
  int at = 0;
  std::array<uint8_t, ORVE_MCUC::brightness::kNodePortCount> ports{};  // brightness of ports 0..3
  ORVE_MCUC::BrightnessReason reason = ORVE_MCUC::BrightnessReason::Timetable;
  bool whole = true;  // for all ports
};

class BrightnessPicture {
 public:
  // From the beginning of a local day (seconds as ORVE_MCUC::secondsOf counts them), for so many days. The
  // plan has run for a day before. No light: slots that follow it send nothing.
  BrightnessPicture(const BrightnessPlan& plan, int64_t midnight, int days, const LightOfDay& light);

  std::string text() const;
  std::string svg() const;
  const std::vector<SlotSpan>& spans() const { return spans_; }
  const std::vector<SentStep>& steps() const { return steps_; }
  // Brightness of a port at a second; nothing before the first was sent and while the light decides.
  std::optional<uint8_t> brightnessAt(int second, unsigned port = 0) const;

 private:
  void run(ORVE_MCUC::VirtualWall& wall);
  void take(const ORVE_MCUC::SentBrightness& sent);
  std::string dayText(int day) const;
  std::string hoursText(int day) const;
  std::string title() const;
  std::string secondText(int second) const;
  // What the light decides between, in percent.
  std::pair<double, double> lightRange() const;
  bool portsDiffer() const;
  bool unknownAt(int second) const;
  void addGround(Plot& plot) const;
  void addCurves(Plot& plot, unsigned port, std::string name) const;

  BrightnessPlan plan_;
  int64_t midnight_;
  int days_;
  bool lit_;
  std::vector<SlotSpan> spans_;
  std::vector<SentStep> steps_;
};

// A wall starts as after power-on, when the control switch counts as on: this switches it off where the plan
// has it off. Before its first tick.
void takeControlSwitch(ORVE_MCUC::VirtualWall& wall);

// The linear table or the lux map of a plan as a curve.
std::string luxCurveText(const BrightnessPlan& plan);
std::string luxCurveSvg(const BrightnessPlan& plan);

}  // namespace parlctl
