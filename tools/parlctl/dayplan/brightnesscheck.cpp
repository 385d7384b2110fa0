#include "brightnesscheck.h"

#include <algorithm>
#include <array>

#include "mcucdatablock.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

constexpr uint8_t kMostReadings = 16;

class Findings {
 public:
  void add(const char* rule, const std::string& where, const std::string& text) {
    list_.push_back({rule, where, text});
  }
  void warnIf(bool found, const char* rule, const std::string& where, const std::string& text) {
    if (found) list_.push_back({rule, where, text, true});
  }
  void addIf(bool found, const char* rule, const std::string& where, const std::string& text) {
    if (found) add(rule, where, text);
  }
  std::vector<PlanFinding> take() { return std::move(list_); }

 private:
  std::vector<PlanFinding> list_;
};

std::string numbered(const char* what, std::size_t index) {
  return std::string(what) + ' ' + std::to_string(index + 1);
}

// The mask of a run counts Monday first; at the start of a plan the same mask is read from Sunday on.
uint8_t asAtTheStart(uint8_t mask) {
  return static_cast<uint8_t>((mask >> 1 | (mask & 1) << 6) & kEveryDay);
}

template <class Nodes>
void checkTimes(const Nodes& nodes, const char* what, Findings& findings) {
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const map::NodeTime& time = nodes[i].time;
    findings.addIf(!time.comes(), "time", numbered(what, i),
                   timeOfDay(time) + " is no time of day: the daemon passes it by");
    if (i == 0 || !time.comes() || time.key() > nodes[i - 1].time.key()) continue;
    findings.add("order", numbered(what, i),
                 timeOfDay(time) +
                     (time == nodes[i - 1].time ? " is the time of the one before it"
                                                : " comes after " + timeOfDay(nodes[i - 1].time)) +
                     ": times have to rise");
  }
}

void checkPercent(uint8_t percent, const std::string& where, Findings& findings) {
  findings.addIf(percent > 100, "percent", where, std::to_string(percent) + " % counts as 100 %");
}

void checkSensors(const BrightnessPlan& plan, Findings& findings) {
  for (std::size_t i = 0; i < plan.sensors.size(); ++i) {
    const auto& sensor = plan.sensors[i];
    const std::string where = numbered("sensor", i);
    findings.addIf(sensor.PortAddr >= 10, "sensor", where,
                   "port " + std::to_string(sensor.PortAddr) + " is never asked: ports are 0 to 9");
    findings.addIf(sensor.SensorAddr >= 6, "sensor", where,
                   "sensor " + std::to_string(sensor.SensorAddr) + " is never asked: sensors are 0 to 5");
    findings.addIf(
        sensor.Pos != 0, "sensor", where,
        "position " + std::to_string(sensor.Pos) + " is never asked: only 0, a receiving card, is");
    findings.addIf(std::count(plan.sensors.begin(), plan.sensors.end(), sensor) > 1, "sensor", where,
                   "is there more than once");
  }
}

void checkSlots(const BrightnessPlan& plan, Findings& findings) {
  const auto& slots = plan.slots;
  findings.addIf(std::none_of(slots.begin(), slots.end(), [](const auto& slot) { return slot.enabled != 0; }),
                 "slots", "plan", "no slot is enabled: nothing is ever sent");
  checkTimes(slots, "slot", findings);
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const map::MixedNode& slot = slots[i];
    const std::string where = numbered("slot", i);
    if (!slot.ambient) checkPercent(slot.percent, where, findings);
    findings.addIf(
        slot.enabled > 1, "enabled", where,
        "enabled is " + std::to_string(slot.enabled) + ": it is found as a slot in force, but not applied");
    findings.addIf((slot.weekdays & kEveryDay) == 0, "weekdays", where, "is valid on no day");
    const uint8_t started = asAtTheStart(slot.weekdays & kEveryDay);
    findings.warnIf(started != (slot.weekdays & kEveryDay), "weekdays", where,
                    "valid on " + weekdaysText(slot.weekdays) + " while the plan runs, but on " +
                        weekdaysText(started) + " when it is started in the slot");
  }
}

void checkMap(const BrightnessPlan& plan, Findings& findings) {
  for (std::size_t i = 0; i < plan.map.size(); ++i) {
    const std::string where = numbered("lux map point", i);
    checkPercent(plan.map[i].percent, where, findings);
    if (i == 0) continue;
    const auto& before = plan.map[i - 1];
    findings.addIf(
        plan.map[i].lux <= before.lux, "map", where,
        std::to_string(plan.map[i].lux) + " lux after " + std::to_string(before.lux) + ": lux have to rise");
    findings.addIf(plan.map[i].percent < before.percent, "map", where,
                   "the map falls from " + std::to_string(before.percent) + " % to " +
                       std::to_string(plan.map[i].percent) +
                       " %: between the points the first of them holds");
  }
}

void checkMixed(const BrightnessPlan& plan, Findings& findings) {
  findings.warnIf(!plan.global, "switch", "header", "automatic is off: the plan never runs");
  findings.warnIf(plan.global && !plan.control, "switch", "header",
                  "on is off: the plan waits for the control switch");
  checkSlots(plan, findings);
  checkMap(plan, findings);
  if (plan.fallback.enabled) checkPercent(plan.fallback.percent, "fallback", findings);
  const bool ambient = std::any_of(plan.slots.begin(), plan.slots.end(),
                                   [](const auto& slot) { return slot.ambient && slot.enabled == 1; });
  if (!ambient) return;
  findings.addIf(plan.sensors.empty(), "sensor", "plan", "slots follow the light, but there is no sensor");
  findings.addIf(plan.map.empty(), "map", "plan", "slots follow the light, but there is no lux map");
  findings.addIf(plan.readInterval == 0, "interval", "header",
                 "the sensors are read every 0 s: the daemon reads them every second");
  findings.addIf(plan.readTimes == 0 || plan.readTimes > kMostReadings, "readings", "header",
                 std::to_string(plan.readTimes) + " readings of a decision count as " +
                     (plan.readTimes == 0 ? "1" : "16"));
}

void checkAutomatic(const BrightnessPlan& plan, Findings& findings) {
  const auto& table = plan.table;
  findings.addIf(plan.sensors.empty(), "sensor", "plan", "there is no sensor: nothing is ever sent");
  findings.addIf(table.steps < 1 || table.steps > record::kMostLuxPoints, "steps", "table",
                 std::to_string(table.steps) + " steps: a table has 1 to 32, otherwise nothing is sent");
  findings.addIf(table.maxLux <= table.minLux, "map", "table", "the highest lux is not above the lowest");
  findings.warnIf(table.maxBrightness < table.minBrightness, "map", "table",
                  "the brightness falls with the light");
  findings.addIf(table.steps > 0 && table.maxLux > table.minLux && table.gridLux() == 0, "map", "table",
                 "there are more steps than lux between the ends");
}

void checkProgrammable(const BrightnessPlan& plan, Findings& findings) {
  findings.addIf(plan.nodes.empty(), "nodes", "plan", "there is no node");
  checkTimes(plan.nodes, "node", findings);
  for (std::size_t i = 0; i < plan.nodes.size(); ++i)
    findings.addIf(plan.nodes[i].ports == 0, "ports", numbered("node", i), "is for no port");
}

struct List {
  const char* name;
  std::size_t baseAt;
  std::size_t entrySize;  // 0: one record without a count
  std::size_t most;
};
constexpr std::array kLists{
    List{"sensor list", record::kSensorBase, record::kMixedSensorSize, record::kMostSensors},
    List{"slots", record::kTimeNodeBase, record::kMixedNodeSize, 255},
    List{"lux map", record::kLuxMapBase, record::kLuxPointSize, record::kMostLuxPoints},
    List{"fallback", record::kSensorValidBase, 0, 0}};

void checkList(std::span<const uint8_t> file, const List& list, std::size_t length, Findings& findings) {
  const std::size_t base = map::le16(file, list.baseAt);
  const std::size_t count = list.entrySize != 0 && base < file.size() ? file[base] : 0;
  const std::size_t end = base + (list.entrySize == 0 ? record::kFallbackSize : 1 + count * list.entrySize);
  const std::string place = "at " + std::to_string(base) + " to " + std::to_string(end);
  findings.addIf(end > length, "base", list.name,
                 place + " it lies beyond the file of " + std::to_string(length) + " bytes");
  findings.addIf(base < record::kGradual + 1, "base", list.name, place + " it lies in the header");
  findings.addIf(
      list.most != 0 && count > list.most, "count", list.name,
      std::to_string(count) + " entries, of at most " + std::to_string(list.most) + ": it counts as empty");
}

}  // namespace

std::vector<PlanFinding> checkPlan(const BrightnessPlan& plan) {
  Findings findings;
  checkSensors(plan, findings);
  if (record::isMixedFile(plan.mode)) checkMixed(plan, findings);
  if (plan.mode == record::kAutomatic) checkAutomatic(plan, findings);
  if (plan.mode == record::kProgrammable) checkProgrammable(plan, findings);
  return findings.take();
}

std::vector<PlanFinding> checkFile(std::span<const uint8_t> file) {
  Findings findings;
  const uint8_t mode = file.empty() ? uint8_t{0} : file[0];
  findings.addIf(std::string_view(modeName(mode)) == "off", "mode", "header",
                 "mode " + std::to_string(mode) + " switches the automatic brightness off");
  if (record::isMixedFile(mode)) {
    const std::size_t length = map::le16(file, record::kFileLength);
    findings.addIf(length > record::kFileSize || length > file.size(), "length", "header",
                   "the file says that it has " + std::to_string(length) + " bytes");
    for (const List& list : kLists) checkList(file, list, std::min(length, file.size()), findings);
  }
  findings.addIf(mode == record::kProgrammable && file.size() > 1 &&
                     (file[record::kCount] == 0 || file[record::kCount] > record::kProgrammableNodes),
                 "count", "header",
                 std::to_string(file.size() > 1 ? file[1] : 0) + " nodes count as 1 to 32");
  auto list = findings.take();
  for (PlanFinding& finding : checkPlan(decompile(file))) list.push_back(std::move(finding));
  return list;
}

}  // namespace parlctl
