// A brightness plan as people write it, and as the bytes of the daemon's configuration file.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "calc/brightnessnodes.h"
#include "calc/luxtable.h"

namespace parlctl {

// Which fields count depends on the mode.
struct BrightnessPlan {
  uint8_t mode = ORVE_MCUC::brightness::kMixed;
  std::vector<ORVE_MCUC::SensorRecord> sensors;  // automatic and mixed

  std::vector<ORVE_MCUC::ProgrammableNode> nodes;  // programmable
  bool components = false;

  ORVE_MCUC::LinearTable table;  // automatic

  std::vector<ORVE_MCUC::MixedNode> slots;  // mixed, as the rest
  std::vector<ORVE_MCUC::LuxPoint> map;
  ORVE_MCUC::Fallback fallback;
  bool control = true;
  bool global = true;
  bool gradual = true;
  uint16_t readInterval = 30;  // seconds
  uint8_t readTimes = 3;
};

// "mixed", "programmable", "automatic", "serial-black", "hardware"; other modes "off".
const char* modeName(uint8_t mode);

// The bytes of the file, as many as it has: 512 for timetables and the automatic mode. Throws peer::Error
// (Usage) for what the file has no room for.
std::vector<uint8_t> compile(const BrightnessPlan& plan);
// The plan of a stored file, as much of it as lies inside the bytes.
BrightnessPlan decompile(std::span<const uint8_t> file);

// JSON with comments. Throws peer::Error (Usage), naming the field that is missing, unknown or out of its
// range.
BrightnessPlan planFromText(const std::string& text);
std::string planText(const BrightnessPlan& plan);

inline constexpr std::array<const char*, 7> kDayWords{"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
inline constexpr uint8_t kEveryDay = 0x7F;

// "06:00"; bytes that are no time as they stand: "25:7A".
std::string timeOfDay(const ORVE_MCUC::NodeTime& time);
// "mon-fri", "sat,sun", "never", "every day": the days of a mask whose first bit is Monday.
std::string weekdaysText(uint8_t mask);

}  // namespace parlctl
