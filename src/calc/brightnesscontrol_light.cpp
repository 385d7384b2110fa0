// Sensors: readings, averages, and what they decide.
#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {
namespace {

using Note = BrightnessNote;

// Tells of the way through a map.
class NotedWalk : public LuxWalk {
 public:
  NotedWalk(BrightnessDevice& device, uint16_t lux) : device_(device), lux_(lux) {}
  void ends(uint16_t first, uint16_t last) override { device_.note(Note::MapEnds, {first, last, lux_}); }
  void next(uint16_t lux) override { device_.note(Note::MapNext, {lux}); }
  void between(unsigned percent) override { device_.note(Note::MapBetween, {percent}); }
  void passed(uint16_t lux) override { device_.note(Note::MapPassed, {lux}); }

 private:
  BrightnessDevice& device_;
  uint16_t lux_;
};

}  // namespace

std::optional<uint16_t> BrightnessControl::ReadEnvironmentLux(const SensorRecord& sensor) {
  if (!mayBeAsked(sensor)) {
    device_.note(Note::SensorNotAsked, {sensor.Pos, sensor.PortAddr, sensor.BoardAddr, sensor.SensorAddr});
    return {};
  }
  SensorAnswer answer{};
  if (!device_.askSensor(sensor, answer)) {
    device_.note(Note::SensorUnread, {});
    return {};
  }
  const auto lux = luxOf(answer);
  if (lux)
    device_.note(Note::SensorRead, {*lux});
  else
    device_.note(Note::SensorInvalid, {});
  return lux;
}

std::optional<uint16_t> BrightnessControl::averageOf(const SensorList& sensors) {
  std::array<uint16_t, brightness::kMostSensors> values{};
  std::size_t count = 0;
  for (const SensorRecord& sensor : sensors.all()) {
    if (const auto lux = ReadEnvironmentLux(sensor)) values[count++] = *lux;
  }
  return SortAndAverage(std::span(values).first(count));
}

std::optional<uint16_t> BrightnessControl::GetAverageLuxOneTime() {
  const auto mirror =
      locked([](BrightnessSchedule& schedule) { return schedule.ProgrammableTimeTableArray; });
  device_.note(Note::AutomaticCount, {mirror[brightness::kCount]});
  const auto lux = averageOf(automaticSensors(mirror));
  if (lux) device_.note(Note::AutomaticLux, {*lux});
  return lux;
}

std::optional<uint16_t> BrightnessControl::GetMixAdjAverageLux(const File& file) {
  const uint16_t base = locked([](BrightnessSchedule& schedule) { return schedule.rereadSensorBase(); });
  device_.note(Note::MixedBase, {base});
  const auto lux = averageOf(mixedSensors(file, base));
  if (lux)
    device_.note(Note::MixedLux, {*lux});
  else
    device_.note(Note::MixedFailed, {});
  return lux;
}

std::optional<BrightnessChange> BrightnessControl::automaticChange(std::optional<uint16_t> lux) {
  std::optional<BrightnessSchedule::LinearUse> use;
  const auto change = locked([&](BrightnessSchedule& schedule) -> std::optional<BrightnessChange> {
    // The mode may have changed while the sensors were asked.
    if (!schedule.automaticReadingDue()) return {};
    use = schedule.takeAutomaticReading(lux);
    return use ? use->change : std::nullopt;
  });
  if (use) {
    const LinearTable& table = use->table;
    device_.note(Note::LinearTable, {table.maxLux, table.minLux, table.gridLux(), table.steps, table.steps});
  }
  return change;
}

void BrightnessControl::AutoBrightnessAdjust() {
  if (!locked([](BrightnessSchedule& schedule) { return schedule.automaticReadingDue(); })) return;
  if (const auto change = automaticChange(GetAverageLuxOneTime())) SmartAdjustGlobalBrightness(*change);
}

std::optional<uint8_t> BrightnessControl::percentFor(const File& file, uint16_t lux) {
  const uint16_t base = locked([](BrightnessSchedule& schedule) { return schedule.LuxMapBaseAddr; });
  const LuxMap map = luxMap(file, base);
  device_.note(Note::MapItems, {map.items});
  NotedWalk walk(device_, lux);
  return MixAdjLuxToBriLookupTable(map, lux, walk);
}

std::optional<uint8_t> BrightnessControl::percentOf(const BrightnessSchedule::MixedDecision& decision,
                                                    const File& file) {
  if (decision.complete) {
    device_.note(Note::MixedOnce, {});
    return decision.lux ? percentFor(file, *decision.lux) : std::nullopt;
  }
  if (!decision.fallback) return {};
  const uint16_t base = locked([](BrightnessSchedule& schedule) { return schedule.SensorValidBaseAddr; });
  const Fallback fallback = fallbackOf(file, base);
  return fallback.enabled ? std::optional(fallback.percent) : std::nullopt;
}

// A plan that starts while the sensors are asked begins with readings of its own.
void BrightnessControl::runMixedReading() {
  if (!locked([](BrightnessSchedule& schedule) { return schedule.mixedReadingDue(); })) return;
  File file;
  uint32_t plan = 0;
  const auto keep = [&](auto&, const File& stored) {
    file = stored;
    plan = plan_;
  };
  if (!withFile(keep)) return;
  const auto lux = GetMixAdjAverageLux(file);
  const auto decision = locked([&](BrightnessSchedule& schedule) {
    return plan == plan_ ? schedule.takeMixedReading(lux) : BrightnessSchedule::MixedDecision{};
  });
  const auto percent = percentOf(decision, file);
  if (!percent) return;
  const auto reason = decision.fallback ? BrightnessReason::Fallback : BrightnessReason::Sensor;
  const auto change = locked([&](BrightnessSchedule& schedule) -> std::optional<BrightnessChange> {
    return plan == plan_ ? std::optional(schedule.changeTo(brightnessOf(*percent), reason)) : std::nullopt;
  });
  if (change) SmartAdjustGlobalBrightness(*change);
}

}  // namespace ORVE_MCUC
