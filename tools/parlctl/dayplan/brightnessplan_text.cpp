// The text of a plan, as people edit it.
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "brightnessplan.h"

namespace parlctl {

namespace {

using nlohmann::json;
namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

}  // namespace

std::string timeOfDay(const map::NodeTime& time) {
  char text[8];
  std::snprintf(text, sizeof text, "%02X:%02X", unsigned{time.hour}, unsigned{time.minute});
  return text;
}

std::string weekdaysText(uint8_t mask) {
  mask &= kEveryDay;
  if (mask == kEveryDay) return "every day";
  std::string text;
  for (unsigned day = 0; day < 7; ++day) {
    if ((mask >> day & 1) == 0) continue;
    unsigned last = day;
    while (last < 6 && (mask >> (last + 1) & 1) != 0) ++last;
    text += (text.empty() ? "" : ",") + std::string(kDayWords[day]);
    if (last > day) text += (last == day + 1 ? "," : "-") + std::string(kDayWords[last]);
    day = last;
  }
  return text.empty() ? "never" : text;
}

namespace {

// Lists with an element a line, which is what people edit.
template <class List, class Write>
std::string listText(const char* name, const List& list, Write write) {
  std::string text = std::string("  \"") + name + "\": [";
  for (std::size_t i = 0; i < list.size(); ++i) text += (i == 0 ? "\n    " : ",\n    ") + write(list[i]);
  return text + (list.empty() ? "]" : "\n  ]");
}

std::string quoted(const std::string& words) {
  return '"' + words + '"';
}

std::string sensorText(const map::SensorRecord& sensor) {
  return "{\"port\": " + std::to_string(sensor.PortAddr) + ", \"card\": " + std::to_string(sensor.BoardAddr) +
         ", \"sensor\": " + std::to_string(sensor.SensorAddr) +
         (sensor.Pos == 0 ? "" : ", \"position\": " + std::to_string(sensor.Pos)) + '}';
}

std::string nodeText(const map::ProgrammableNode& node) {
  json ports = json::array();
  for (unsigned port = 0; port < record::kNodePortCount; ++port)
    if ((node.ports >> port & 1) != 0) ports.push_back(port);
  std::string text = "{\"from\": " + quoted(timeOfDay(node.time)) +
                     ", \"brightness\": " + std::to_string(node.brightness) + ", \"ports\": " + ports.dump();
  if (node.withComponents) text += ", \"components\": " + json(node.components).dump();
  return text + '}';
}

std::string slotText(const map::MixedNode& slot) {
  std::string text = "{\"from\": " + quoted(timeOfDay(slot.time));
  if (slot.ambient) text += ", \"ambient\": true";
  if (!slot.ambient || slot.percent != 0) text += ", \"percent\": " + std::to_string(slot.percent);
  if ((slot.weekdays & kEveryDay) != kEveryDay) text += ", \"days\": " + quoted(weekdaysText(slot.weekdays));
  if (slot.enabled != 1) text += ", \"enabled\": false";
  return text + '}';
}

std::string mixedText(const BrightnessPlan& plan) {
  const auto flag = [](bool value) { return value ? "true" : "false"; };
  std::string text = std::string("  \"on\": ") + flag(plan.control) + ",          // the control switch\n";
  text += std::string("  \"automatic\": ") + flag(plan.global) + ",   // false: none of this runs\n";
  text += std::string("  \"gradual\": ") + flag(plan.gradual) + ",     // one step of 255 each 50 ms\n";
  text += "  \"read_every_s\": " + std::to_string(plan.readInterval) +
          ",  // seconds between readings of the sensors\n  \"readings\": " + std::to_string(plan.readTimes) +
          ",       // of a decision\n";
  text += listText("sensors", plan.sensors, sensorText) + ",\n";
  text += "  // Days are those of the running plan, Monday first.\n" +
          listText("slots", plan.slots, slotText) + ",\n";
  text += listText("lux_map", plan.map,
                   [](const map::LuxPoint& point) {
                     return "{\"lux\": " + std::to_string(point.lux) +
                            ", \"percent\": " + std::to_string(point.percent) + '}';
                   }) +
          ",\n";
  return text +
         "  // After three failed readings in a row; null: the brightness stays.\n  \"fallback_percent\": " +
         (plan.fallback.enabled ? std::to_string(plan.fallback.percent) : "null") + '\n';
}

}  // namespace

std::string planText(const BrightnessPlan& plan) {
  std::string text = "{\n  \"mode\": " + quoted(modeName(plan.mode)) + ",\n";
  if (plan.mode == record::kProgrammable) {
    text += listText("nodes", plan.nodes, nodeText) + '\n';
  } else if (plan.mode == record::kAutomatic) {
    const auto& table = plan.table;
    text += listText("sensors", plan.sensors, sensorText) +
            ",\n  \"lux\": " + json({table.minLux, table.maxLux}).dump() +
            ",  // between them in equal steps\n  \"brightness\": " +
            json({table.minBrightness, table.maxBrightness}).dump() +
            ",\n  \"steps\": " + std::to_string(table.steps) + '\n';
  } else if (record::isMixedFile(plan.mode)) {
    text += mixedText(plan);
  }
  return text + "}\n";
}

}  // namespace parlctl
