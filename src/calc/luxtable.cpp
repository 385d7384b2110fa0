#include "calc/luxtable.h"

#include <algorithm>
#include <numeric>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

namespace record = brightness;

constexpr uint16_t kGlaring = 60000;  // lux above: the last point, whatever the map says
constexpr uint8_t kValid = 0x80;
constexpr std::size_t kMostSamples = 16;

uint8_t byteAt(std::span<const uint8_t> bytes, std::size_t at) {
  return at < bytes.size() ? bytes[at] : uint8_t{0};
}

SensorRecord sensorAt(std::span<const uint8_t> bytes, std::size_t at) {
  return {byteAt(bytes, at), byteAt(bytes, at + 1), le16(bytes, at + 2), byteAt(bytes, at + 4)};
}

SensorList sensors(std::span<const uint8_t> bytes, std::size_t count, std::size_t first, std::size_t size) {
  SensorList list;
  if (count > record::kMostSensors || !fits(bytes.size(), first, count * size)) return list;
  for (; list.count < count; ++list.count)
    list.sensors[list.count] = sensorAt(bytes, first + list.count * size);
  return list;
}

}  // namespace

SensorList automaticSensors(std::span<const uint8_t> mirror) {
  return sensors(mirror, byteAt(mirror, record::kCount), record::kAutomaticSensors,
                 record::kAutomaticSensorSize);
}

SensorList mixedSensors(std::span<const uint8_t> file, std::size_t base) {
  return sensors(file, byteAt(file, base), base + 1, record::kMixedSensorSize);
}

SensorQuestion questionTo(const SensorRecord& sensor) {
  return {sensor.SensorAddr, 0x00, 0x00, 0x00, 0x55, 0xAA, 0x01, 0x02, 0x80, 0xFF, 0x81};
}

std::optional<uint16_t> luxOf(const SensorAnswer& answer) {
  if (answer[0] != 0x01 || answer[1] != 0x02 || (answer[2] & kValid) == 0) return {};
  return static_cast<uint16_t>(((answer[2] & ~kValid & 0xFF) * 256 + answer[3]) * 2);
}

std::optional<uint16_t> SortAndAverage(std::span<const uint16_t> values) {
  std::array<uint16_t, kMostSamples> sorted{};
  std::span<uint16_t> used = std::span(sorted).first(std::min(values.size(), sorted.size()));
  std::copy_n(values.begin(), used.size(), used.begin());
  if (used.size() >= 3) {
    std::sort(used.begin(), used.end());
    used = used.subspan(1, used.size() - 2);
  }
  const auto valid = std::partition(used.begin(), used.end(), [](uint16_t value) { return value != kNoLux; });
  if (valid == used.begin()) return {};
  return static_cast<uint16_t>(std::accumulate(used.begin(), valid, 0U) /
                               static_cast<unsigned>(valid - used.begin()));
}

LinearTable linearTable(std::span<const uint8_t> mirror) {
  return {.maxLux = le16(mirror, record::kMaxLux),
          .minLux = le16(mirror, record::kMinLux),
          .maxBrightness = byteAt(mirror, record::kMaxBrightness),
          .minBrightness = byteAt(mirror, record::kMinBrightness),
          .steps = byteAt(mirror, record::kSteps)};
}

std::optional<uint8_t> LuxToBrightnessLookupTable(const LinearTable& table, uint16_t lux) {
  if (table.steps < 1 || table.steps > record::kMostLuxPoints) return {};
  if (lux >= table.maxLux) return static_cast<uint8_t>(table.maxBrightness);
  if (lux <= table.minLux) return static_cast<uint8_t>(table.minBrightness);
  // Between the ends maxLux is above minLux. A grid of 0 has no step but the last.
  const int grid = table.gridLux();
  const int step = grid == 0 ? table.steps - 1 : std::min((lux - table.minLux) / grid, table.steps - 1);
  const int brightness =
      table.minBrightness + step * (table.maxBrightness - table.minBrightness) / table.steps;
  return static_cast<uint8_t>(std::clamp(brightness, 0, 255));
}

LuxMap luxMap(std::span<const uint8_t> file, std::size_t base) {
  LuxMap map{.items = byteAt(file, base)};
  if (!fits(file.size(), base, 1 + map.items * record::kLuxPointSize)) map.items = 0;
  if (map.items > record::kMostLuxPoints) return map;
  for (std::size_t i = 0; i < map.items; ++i) {
    const std::size_t at = base + 1 + i * record::kLuxPointSize;
    map.points[i] = {le16(file, at), byteAt(file, at + 2)};
  }
  return map;
}

namespace {

// What a part of the way from one point to the next adds: never less than nothing.
unsigned addedPercent(const LuxPoint& from, const LuxPoint& to, uint16_t lux) {
  const double part = static_cast<double>(lux - from.lux) / (to.lux - from.lux);
  const double added = part * (to.percent - from.percent);
  return added < 0 ? 0 : static_cast<unsigned>(added);
}

uint8_t percentBetween(std::span<const LuxPoint> points, uint16_t lux, LuxWalk& walk) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    const LuxPoint& from = points[i - 1];
    const LuxPoint& to = points[i];
    walk.next(to.lux);
    if (from.lux <= lux && lux <= to.lux) {
      if (from.lux == to.lux) return to.percent;
      const unsigned added = addedPercent(from, to, lux);
      walk.between(added);
      return static_cast<uint8_t>(from.percent + added);
    }
    walk.passed(to.lux);
  }
  return points.back().percent;
}

}  // namespace

std::optional<uint8_t> MixAdjLuxToBriLookupTable(const LuxMap& map, uint16_t lux, LuxWalk& walk) {
  const auto points = map.all();
  if (points.empty()) return {};
  walk.ends(points.front().lux, points.back().lux);
  uint8_t percent = points.back().percent;
  if (lux <= points.front().lux)
    percent = points.front().percent;
  else if (lux < points.back().lux && lux <= kGlaring)
    percent = percentBetween(points, lux, walk);
  return std::min(percent, uint8_t{100});
}

std::optional<uint8_t> MixAdjLuxToBriLookupTable(const LuxMap& map, uint16_t lux) {
  LuxWalk silent;
  return MixAdjLuxToBriLookupTable(map, lux, silent);
}

Fallback fallbackOf(std::span<const uint8_t> file, std::size_t base) {
  if (!fits(file.size(), base, record::kFallbackSize)) return {};
  return {byteAt(file, base + 1) != 0, byteAt(file, base + 2)};
}

}  // namespace ORVE_MCUC
