// From light sensors to a brightness: the question to a sensor and its answer, averages, and the two tables.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "maps/brightnessrecord.h"

namespace ORVE_MCUC {

// A sensor as a plan names it.
struct SensorRecord {
  uint8_t Pos = 0;         // 0: on a receiving card; others are not read
  uint8_t PortAddr = 0;    // output port
  uint16_t BoardAddr = 0;  // card on that port
  uint8_t SensorAddr = 0;  // sensor on that card
  bool operator==(const SensorRecord&) const = default;
};
constexpr bool mayBeAsked(const SensorRecord& sensor) {
  return sensor.PortAddr < 10 && sensor.SensorAddr < 6 && sensor.Pos == 0;
}

// The sensors of a plan, in its order; none when the plan names more than eight.
struct SensorList {
  std::array<SensorRecord, brightness::kMostSensors> sensors{};
  std::size_t count = 0;
  std::span<const SensorRecord> all() const { return std::span(sensors).first(count); }
};
// From the mirror in the automatic mode, from the file in the mixed one.
SensorList automaticSensors(std::span<const uint8_t> mirror);
SensorList mixedSensors(std::span<const uint8_t> file, std::size_t base);

using SensorQuestion = std::array<uint8_t, 11>;
using SensorAnswer = std::array<uint8_t, 5>;
SensorQuestion questionTo(const SensorRecord& sensor);
// Lux, 0 to 65534 in twos; nothing when the answer is not valid.
std::optional<uint16_t> luxOf(const SensorAnswer& answer);

// One entry that holds no reading.
inline constexpr uint16_t kNoLux = 0xFFFF;
// Average without the invalid entries; of three entries or more without the lowest and the highest as well.
// At most 16 entries count. Nothing when no entry is left.
std::optional<uint16_t> SortAndAverage(std::span<const uint16_t> values);

// The automatic mode's table: equal steps between two ends.
struct LinearTable {
  int maxLux = 0;
  int minLux = 0;
  int maxBrightness = 0;
  int minBrightness = 0;
  int steps = 0;

  // 0 for no steps.
  constexpr int gridLux() const { return steps == 0 ? 0 : (maxLux - minLux) / steps; }
};
LinearTable linearTable(std::span<const uint8_t> mirror);
// Brightness 0..255, or nothing for a table without steps or with more than 32. What lies above the last step
// is taken into it.
std::optional<uint8_t> LuxToBrightnessLookupTable(const LinearTable& table, uint16_t lux);

// The mixed mode's map of up to 32 points.
struct LuxPoint {
  uint16_t lux = 0;
  uint8_t percent = 0;
  bool operator==(const LuxPoint&) const = default;
};
struct LuxMap {
  std::array<LuxPoint, brightness::kMostLuxPoints> points{};
  uint8_t items = 0;  // as the file says; 0 when the map does not lie inside of it

  std::span<const LuxPoint> all() const {
    return std::span(points).first(items <= brightness::kMostLuxPoints ? items : 0U);
  }
};
LuxMap luxMap(std::span<const uint8_t> file, std::size_t base);

// How a lookup went from point to point.
class LuxWalk {
 public:
  virtual ~LuxWalk() = default;
  virtual void ends(uint16_t /*first*/, uint16_t /*last*/) {}
  virtual void next(uint16_t /*lux*/) {}
  virtual void between(unsigned /*addedPercent*/) {}
  virtual void passed(uint16_t /*lux*/) {}
};
// Percent 0..100, or nothing for an empty map.
std::optional<uint8_t> MixAdjLuxToBriLookupTable(const LuxMap& map, uint16_t lux, LuxWalk& walk);
std::optional<uint8_t> MixAdjLuxToBriLookupTable(const LuxMap& map, uint16_t lux);

// What the mixed mode does when its sensors keep failing.
struct Fallback {
  bool enabled = false;
  uint8_t percent = 0;
};
Fallback fallbackOf(std::span<const uint8_t> file, std::size_t base);

// Percent as a brightness 0..255; above 100 counts as 100.
constexpr uint8_t brightnessOf(uint8_t percent) {
  return static_cast<uint8_t>((percent > 100 ? 100 : percent) * 255 / 100);
}

}  // namespace ORVE_MCUC
