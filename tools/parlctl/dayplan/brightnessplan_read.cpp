// A plan from its text: JSON with comments.
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "brightnessplan.h"
#include "peer/error.h"

namespace parlctl {

namespace {

using nlohmann::json;
using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

[[noreturn]] void wrong(const std::string& where, const std::string& what) {
  throw Error(Failure::Usage, where + ": " + what);
}

// An object of the plan: each field is asked for once, and none is left over.
class Fields {
 public:
  Fields(const json& object, std::string where) : object_(object), where_(std::move(where)) {
    if (!object.is_object()) wrong(where_, "an object is expected");
  }
  // To be called when all fields have been asked for.
  void end() const {
    for (const auto& [name, value] : object_.items())
      if (!asked_.contains(name)) wrong(where_, "unknown field \"" + name + '"');
  }

  const json* find(const std::string& name) {
    asked_.insert(name);
    const auto found = object_.find(name);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
  }
  const json& at(const std::string& name) {
    const json* found = find(name);
    if (found == nullptr) wrong(where_, '"' + name + "\" is missing");
    return *found;
  }
  int number(const std::string& name, int low, int high) { return numberOf(at(name), path(name), low, high); }
  int number(const std::string& name, int low, int high, int otherwise) {
    const json* found = find(name);
    return found == nullptr ? otherwise : numberOf(*found, path(name), low, high);
  }
  bool flag(const std::string& name, bool otherwise) {
    const json* found = find(name);
    if (found == nullptr) return otherwise;
    if (!found->is_boolean()) wrong(path(name), "true or false is expected");
    return found->get<bool>();
  }
  std::string text(const std::string& name) {
    const json& found = at(name);
    if (!found.is_string()) wrong(path(name), "a text is expected");
    return found.get<std::string>();
  }
  // use(element, its place) for each element of a list that may be missing.
  template <class Use>
  void each(const std::string& name, Use use) {
    const json* list = find(name);
    if (list == nullptr) return;
    if (!list->is_array()) wrong(path(name), "a list is expected");
    for (std::size_t i = 0; i < list->size(); ++i)
      use((*list)[i], path(name) + '[' + std::to_string(i) + ']');
  }
  static int numberOf(const json& value, const std::string& where, int low, int high) {
    if (!value.is_number_integer()) wrong(where, "a whole number is expected");
    const auto number = value.get<int64_t>();
    if (number < low || number > high)
      wrong(where, value.dump() + " is not from " + std::to_string(low) + " to " + std::to_string(high));
    return static_cast<int>(number);
  }
  std::string path(const std::string& name) const { return where_ + '.' + name; }

 private:
  const json& object_;
  std::string where_;
  std::set<std::string> asked_;
};

map::NodeTime timeFrom(const std::string& text, const std::string& where) {
  int hour = 0;
  int minute = 0;
  char rest = 0;
  const bool read = text.size() == 5 && std::sscanf(text.c_str(), "%2d:%2d%c", &hour, &minute, &rest) == 2;
  if (!read || hour < 0 || hour > 23 || minute < 0 || minute > 59)
    wrong(where, '"' + text + "\" is no time of day such as \"06:30\"");
  return {map::toBcd(hour), map::toBcd(minute)};
}

unsigned dayNumber(const std::string& word, const std::string& where) {
  for (unsigned day = 0; day < kDayWords.size(); ++day)
    if (word == kDayWords[day]) return day;
  wrong(where, '"' + word + "\" is no weekday such as \"mon\"");
}

// "mon-fri,sun", "every day", "never".
uint8_t weekdaysFrom(const std::string& text, const std::string& where) {
  if (text == "every day") return kEveryDay;
  unsigned mask = 0;
  if (text == "never") return 0;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t comma = std::min(text.find(',', from), text.size());
    const std::string part = text.substr(from, comma - from);
    const std::size_t dash = part.find('-');
    const unsigned first = dayNumber(part.substr(0, dash), where);
    const unsigned last = dash == std::string::npos ? first : dayNumber(part.substr(dash + 1), where);
    for (unsigned day = first;; day = (day + 1) % 7) {
      mask |= 1U << day;
      if (day == last) break;
    }
    from = comma + 1;
  }
  return static_cast<uint8_t>(mask);
}

map::SensorRecord sensorFrom(const json& value, const std::string& where) {
  Fields fields(value, where);
  map::SensorRecord sensor;
  sensor.PortAddr = static_cast<uint8_t>(fields.number("port", 0, 255));
  sensor.BoardAddr = static_cast<uint16_t>(fields.number("card", 0, 0xFFFF));
  sensor.SensorAddr = static_cast<uint8_t>(fields.number("sensor", 0, 255));
  sensor.Pos = static_cast<uint8_t>(fields.number("position", 0, 255, 0));
  fields.end();
  return sensor;
}

map::ProgrammableNode nodeFrom(const json& value, const std::string& where) {
  Fields fields(value, where);
  map::ProgrammableNode node;
  node.time = timeFrom(fields.text("from"), fields.path("from"));
  node.brightness = static_cast<uint8_t>(fields.number("brightness", 0, 255));
  node.ports = fields.find("ports") == nullptr ? uint8_t{0x0F} : uint8_t{0};
  fields.each("ports", [&](const json& port, const std::string& place) {
    node.ports = static_cast<uint8_t>(node.ports | 1U << Fields::numberOf(port, place, 0, 3));
  });
  std::size_t count = 0;
  fields.each("components", [&](const json& component, const std::string& place) {
    if (count == node.components.size()) wrong(where, "there are four components");
    node.components[count++] = static_cast<uint8_t>(Fields::numberOf(component, place, 0, 255));
  });
  node.withComponents = count != 0;
  fields.end();
  return node;
}

map::MixedNode slotFrom(const json& value, const std::string& where) {
  Fields fields(value, where);
  map::MixedNode slot;
  slot.time = timeFrom(fields.text("from"), fields.path("from"));
  slot.ambient = fields.flag("ambient", false);
  slot.percent = static_cast<uint8_t>(slot.ambient ? fields.number("percent", 0, 255, 0)
                                                   : fields.number("percent", 0, 255));
  slot.weekdays =
      fields.find("days") == nullptr ? kEveryDay : weekdaysFrom(fields.text("days"), fields.path("days"));
  slot.enabled = fields.flag("enabled", true) ? 1 : 0;
  fields.end();
  return slot;
}

map::LuxPoint pointFrom(const json& value, const std::string& where) {
  Fields fields(value, where);
  const map::LuxPoint point{static_cast<uint16_t>(fields.number("lux", 0, 0xFFFF)),
                            static_cast<uint8_t>(fields.number("percent", 0, 255))};
  fields.end();
  return point;
}

uint8_t modeFrom(const std::string& name) {
  for (const uint8_t mode :
       {record::kProgrammable, record::kAutomatic, record::kMixed, record::kSerialBlack, record::kHardware})
    if (name == modeName(mode)) return mode;
  wrong("plan.mode", '"' + name + "\" is none of programmable, automatic, mixed, serial-black, hardware");
}

void readTable(Fields& fields, map::LinearTable& table) {
  const auto ends = [&](const char* name, int high, int& low, int& top) {
    const json& list = fields.at(name);
    if (!list.is_array() || list.size() != 2) wrong(fields.path(name), "[lowest, highest] is expected");
    low = Fields::numberOf(list[0], fields.path(name), 0, high);
    top = Fields::numberOf(list[1], fields.path(name), 0, high);
  };
  ends("lux", 0xFFFF, table.minLux, table.maxLux);
  ends("brightness", 0xFF, table.minBrightness, table.maxBrightness);
  table.steps = fields.number("steps", 0, 255);
}

void readMixed(Fields& fields, BrightnessPlan& plan) {
  plan.control = fields.flag("on", true);
  plan.global = fields.flag("automatic", true);
  plan.gradual = fields.flag("gradual", true);
  plan.readInterval = static_cast<uint16_t>(fields.number("read_every_s", 0, 0xFFFF, plan.readInterval));
  plan.readTimes = static_cast<uint8_t>(fields.number("readings", 0, 255, plan.readTimes));
  fields.each("slots", [&](const json& value, const std::string& where) {
    plan.slots.push_back(slotFrom(value, where));
  });
  fields.each("lux_map", [&](const json& value, const std::string& where) {
    plan.map.push_back(pointFrom(value, where));
  });
  const int fallback = fields.number("fallback_percent", 0, 255, -1);
  if (fallback >= 0) plan.fallback = {true, static_cast<uint8_t>(fallback)};
}

json parsed(const std::string& text) {
  try {
    return json::parse(text, nullptr, true, true);
  } catch (const json::parse_error& error) {
    throw Error(Failure::Usage, std::string("not a plan: ") + error.what());
  }
}

}  // namespace

BrightnessPlan planFromText(const std::string& text) {
  const json root = parsed(text);
  Fields fields(root, "plan");
  BrightnessPlan plan;
  plan.mode = modeFrom(fields.text("mode"));
  if (plan.mode != record::kProgrammable) {
    fields.each("sensors", [&](const json& value, const std::string& where) {
      plan.sensors.push_back(sensorFrom(value, where));
    });
  }
  if (plan.mode == record::kProgrammable) {
    fields.each("nodes", [&](const json& value, const std::string& where) {
      plan.nodes.push_back(nodeFrom(value, where));
      plan.components = plan.components || plan.nodes.back().withComponents;
    });
  } else if (plan.mode == record::kAutomatic) {
    readTable(fields, plan.table);
  } else {
    readMixed(fields, plan);
  }
  fields.end();
  return plan;
}

}  // namespace parlctl
