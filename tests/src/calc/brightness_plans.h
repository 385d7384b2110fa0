// Plans for the tests, as the bytes of a configuration file.
#pragma once

#include <vector>

#include "calc/brightnesspreview.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {

struct PlanNode {
  int hour;
  int minute;
  uint8_t percent;  // brightness itself in a programmable plan
  bool ambient = false;
  uint8_t weekdays = 0x7F;
  uint8_t enabled = 1;
};

inline BrightnessFile programmablePlan(const std::vector<PlanNode>& nodes) {
  namespace at = brightness;
  BrightnessFile file{};
  file[at::kMode] = at::kProgrammable;
  file[at::kCount] = static_cast<uint8_t>(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    file[at::kNodeHour + i] = toBcd(nodes[i].hour);
    file[at::kNodeMinute + i] = toBcd(nodes[i].minute);
    file[at::kNodePorts + i] = 1;
    file[at::kNodeBrightness + i] = nodes[i].percent;
  }
  return file;
}

inline constexpr std::size_t kTestSensors = 32;
inline constexpr std::size_t kTestNodes = 128;
inline constexpr std::size_t kTestMap = 700;
inline constexpr std::size_t kTestFallback = 900;
inline constexpr uint16_t kTestLength = 903;

// One sensor (port 0, card 0, number 1), a map from 100 lux 10 % to 1000 lux 100 %, a fallback of 40 %.
inline BrightnessFile mixedPlan(const std::vector<PlanNode>& nodes, bool gradual = false,
                                uint8_t mode = brightness::kMixed) {
  namespace at = brightness;
  BrightnessFile file{};
  const std::span<uint8_t> bytes = file;
  file[at::kMode] = mode;
  putLe16(bytes, at::kFileLength, kTestLength);
  putLe16(bytes, at::kSensorBase, kTestSensors);
  putLe16(bytes, at::kTimeNodeBase, kTestNodes);
  putLe16(bytes, at::kLuxMapBase, kTestMap);
  putLe16(bytes, at::kSensorValidBase, kTestFallback);
  file[at::kControl] = file[at::kGlobalControl] = 1;
  putLe16(bytes, at::kReadInterval, 5);
  file[at::kReadTimes] = 3;
  file[at::kGradual] = gradual ? 1 : 0;
  const auto put = [&](std::size_t where, std::initializer_list<uint8_t> values) {
    std::copy(values.begin(), values.end(), file.begin() + static_cast<std::ptrdiff_t>(where));
  };
  put(kTestSensors, {1, 0, 0, 0, 0, 1});
  file[kTestNodes] = static_cast<uint8_t>(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const PlanNode& node = nodes[i];
    put(kTestNodes + 1 + i * at::kMixedNodeSize,
        {toBcd(node.hour), toBcd(node.minute), 0, node.ambient ? at::kAmbientSlot : uint8_t{0}, node.weekdays,
         node.percent, node.enabled});
  }
  put(kTestMap, {2, 100, 0, 10, 1000 & 0xFF, 1000 >> 8, 100});
  put(kTestFallback, {0, 1, 40});
  return file;
}

inline int64_t at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  return secondsOf(
      {.year = year - 2000, .month = month, .day = day, .hour = hour, .minute = minute, .second = second});
}

inline const std::vector<PlanNode> kThreeNodes{{6, 0, 60}, {18, 0, 30}, {22, 0, 10}};

inline std::vector<uint8_t> valuesOf(const VirtualWall& wall) {
  std::vector<uint8_t> values;
  for (const SentBrightness& sent : wall.sent) values.push_back(sent.value);
  return values;
}

// In chunks of 512 bytes, as a peer sends it.
inline void write(VirtualWall& wall, const BrightnessFile& file, std::size_t length) {
  for (std::size_t from = 0; from < length; from += 512)
    wall.control().SetBrightnessAdjustTable(
        from, std::span(file).subspan(from, std::min<std::size_t>(512, length - from)));
}

}  // namespace ORVE_MCUC
