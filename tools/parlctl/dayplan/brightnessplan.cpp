#include "brightnessplan.h"

#include <algorithm>
#include <array>

#include "mcucdatablock.h"
#include "peer/error.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

using Bytes = std::vector<uint8_t>;

// Behind the header; a gap that makes hexadecimal dumps readable.
constexpr std::size_t kFirstList = 0x20;

[[noreturn]] void tooMany(const char* what, std::size_t limit) {
  throw Error(Failure::Usage, std::string("a plan has at most ") + std::to_string(limit) + ' ' + what);
}

Bytes sensorBytes(const map::SensorRecord& sensor, std::size_t size) {
  Bytes bytes(size);
  map::ByteWriter writer(bytes);
  writer.u8(sensor.Pos);
  writer.u8(sensor.PortAddr);
  writer.le16(sensor.BoardAddr);
  writer.u8(sensor.SensorAddr);
  return bytes;
}

void compileProgrammable(const BrightnessPlan& plan, Bytes& file) {
  if (plan.nodes.size() > record::kProgrammableNodes)
    tooMany("nodes in a timetable", record::kProgrammableNodes);
  file[record::kCount] = static_cast<uint8_t>(plan.nodes.size());
  file[record::kComponents] = plan.components ? record::kWithComponents : uint8_t{0};
  for (std::size_t i = 0; i < plan.nodes.size(); ++i) {
    const auto& node = plan.nodes[i];
    file[record::kNodeHour + i] = node.time.hour;
    file[record::kNodeMinute + i] = node.time.minute;
    file[record::kNodePorts + i] = node.ports;
    file[record::kNodeBrightness + i] = node.brightness;
    for (std::size_t k = 0; k < node.components.size(); ++k)
      file[record::kNodeComponents + k * record::kColumn + i] = node.components[k];
  }
}

void compileAutomatic(const BrightnessPlan& plan, Bytes& file) {
  if (plan.sensors.size() > record::kMostSensors) tooMany("sensors", record::kMostSensors);
  file[record::kCount] = static_cast<uint8_t>(plan.sensors.size());
  map::putLe16(file, record::kMaxLux, static_cast<uint16_t>(plan.table.maxLux));
  map::putLe16(file, record::kMinLux, static_cast<uint16_t>(plan.table.minLux));
  file[record::kMaxBrightness] = static_cast<uint8_t>(plan.table.maxBrightness);
  file[record::kMinBrightness] = static_cast<uint8_t>(plan.table.minBrightness);
  file[record::kSteps] = static_cast<uint8_t>(plan.table.steps);
  for (std::size_t i = 0; i < plan.sensors.size(); ++i) {
    const Bytes bytes = sensorBytes(plan.sensors[i], record::kAutomaticSensorSize);
    std::copy(bytes.begin(), bytes.end(),
              file.begin() +
                  static_cast<std::ptrdiff_t>(record::kAutomaticSensors + i * record::kAutomaticSensorSize));
  }
}

void compileHeader(const BrightnessPlan& plan, Bytes& file) {
  file[record::kControl] = plan.control ? 1 : 0;
  file[record::kGlobalControl] = plan.global ? 1 : 0;
  file[record::kGradual] = plan.gradual ? 1 : 0;
  map::putLe16(file, record::kReadInterval, plan.readInterval);
  file[record::kReadTimes] = plan.readTimes;
}

// A list at the end of the file, its base in the header.
template <class List, class Write>
void append(Bytes& file, std::size_t baseAt, const List& list, Write write) {
  map::putLe16(file, baseAt, static_cast<uint16_t>(file.size()));
  file.push_back(static_cast<uint8_t>(list.size()));
  for (const auto& entry : list) {
    const Bytes bytes = write(entry);
    file.insert(file.end(), bytes.begin(), bytes.end());
  }
}

Bytes slotBytes(const map::MixedNode& slot) {
  Bytes bytes(record::kMixedNodeSize);
  bytes[record::kMixedHour] = slot.time.hour;
  bytes[record::kMixedMinute] = slot.time.minute;
  bytes[record::kMixedKind] = slot.ambient ? record::kAmbientSlot : uint8_t{0};
  bytes[record::kMixedWeekdays] = slot.weekdays;
  bytes[record::kMixedPercent] = slot.percent;
  bytes[record::kMixedEnabled] = slot.enabled;
  return bytes;
}

void compileMixed(const BrightnessPlan& plan, Bytes& file) {
  if (plan.sensors.size() > record::kMostSensors) tooMany("sensors", record::kMostSensors);
  if (plan.map.size() > record::kMostLuxPoints) tooMany("points in a lux map", record::kMostLuxPoints);
  if (plan.slots.size() > 0xFF) tooMany("slots", 0xFF);
  compileHeader(plan, file);
  append(file, record::kSensorBase, plan.sensors,
         [](const auto& sensor) { return sensorBytes(sensor, record::kMixedSensorSize); });
  append(file, record::kTimeNodeBase, plan.slots, slotBytes);
  append(file, record::kLuxMapBase, plan.map, [](const map::LuxPoint& point) {
    return Bytes{static_cast<uint8_t>(point.lux), static_cast<uint8_t>(point.lux >> 8), point.percent};
  });
  map::putLe16(file, record::kSensorValidBase, static_cast<uint16_t>(file.size()));
  const uint8_t fallback[] = {0, plan.fallback.enabled ? uint8_t{1} : uint8_t{0}, plan.fallback.percent};
  file.insert(file.end(), std::begin(fallback), std::end(fallback));
  map::putLe16(file, record::kFileLength, static_cast<uint16_t>(file.size()));
}

uint8_t byteAt(std::span<const uint8_t> file, std::size_t at) {
  return at < file.size() ? file[at] : uint8_t{0};
}

void decompileMixed(std::span<const uint8_t> file, BrightnessPlan& plan) {
  plan.control = byteAt(file, record::kControl) != 0;
  plan.global = byteAt(file, record::kGlobalControl) != 0;
  plan.gradual = byteAt(file, record::kGradual) != 0;
  plan.readInterval = map::le16(file, record::kReadInterval);
  plan.readTimes = byteAt(file, record::kReadTimes);
  const auto sensors = map::mixedSensors(file, map::le16(file, record::kSensorBase));
  plan.sensors.assign(sensors.all().begin(), sensors.all().end());
  const map::MixedNodes nodes(file, map::le16(file, record::kTimeNodeBase));
  for (int i = 0; i < nodes.count(); ++i) {
    if (const auto node = nodes[i]) plan.slots.push_back(*node);
  }
  const auto points = map::luxMap(file, map::le16(file, record::kLuxMapBase));
  plan.map.assign(points.all().begin(), points.all().end());
  plan.fallback = map::fallbackOf(file, map::le16(file, record::kSensorValidBase));
}

constexpr std::array kModes{std::pair{record::kProgrammable, "programmable"},
                            std::pair{record::kAutomatic, "automatic"}, std::pair{record::kMixed, "mixed"},
                            std::pair{record::kSerialBlack, "serial-black"},
                            std::pair{record::kHardware, "hardware"}};

}  // namespace

const char* modeName(uint8_t mode) {
  for (const auto& [value, name] : kModes)
    if (value == mode) return name;
  return "off";
}

std::vector<uint8_t> compile(const BrightnessPlan& plan) {
  const bool mixed = record::isMixedFile(plan.mode);
  Bytes file(mixed ? kFirstList : record::kMirrorSize);
  file[record::kMode] = plan.mode;
  if (mixed) compileMixed(plan, file);
  if (plan.mode == record::kProgrammable) compileProgrammable(plan, file);
  if (plan.mode == record::kAutomatic) compileAutomatic(plan, file);
  if (file.size() > record::kFileSize)
    throw Error(Failure::Usage, "the plan takes " + std::to_string(file.size()) + " bytes, there are " +
                                    std::to_string(record::kFileSize));
  return file;
}

BrightnessPlan decompile(std::span<const uint8_t> file) {
  BrightnessPlan plan;
  plan.mode = byteAt(file, record::kMode);
  if (record::isMixedFile(plan.mode)) decompileMixed(file, plan);
  if (plan.mode == record::kProgrammable) {
    const map::ProgrammableNodes nodes(file);
    for (int i = 0; i < nodes.count(); ++i) plan.nodes.push_back(nodes[i]);
    plan.components = byteAt(file, record::kComponents) == record::kWithComponents;
  }
  if (plan.mode == record::kAutomatic) {
    const auto sensors = map::automaticSensors(file);
    plan.sensors.assign(sensors.all().begin(), sensors.all().end());
    plan.table = map::linearTable(file);
  }
  return plan;
}

}  // namespace parlctl
