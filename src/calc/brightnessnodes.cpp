#include "calc/brightnessnodes.h"

#include <algorithm>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

namespace record = brightness;

int ProgrammableNodes::count() const {
  const int stored = record::kCount < mirror_.size() ? mirror_[record::kCount] : 0;
  return std::clamp(stored, 1, static_cast<int>(record::kProgrammableNodes));
}

uint8_t ProgrammableNodes::cell(std::size_t column, int node) const {
  const std::size_t at = column + static_cast<std::size_t>(node);
  return node >= 0 && node < count() && at < mirror_.size() ? mirror_[at] : uint8_t{0};
}

ProgrammableNode ProgrammableNodes::operator[](int node) const {
  ProgrammableNode result;
  result.time = {cell(record::kNodeHour, node), cell(record::kNodeMinute, node)};
  result.ports = cell(record::kNodePorts, node) & 0x0F;
  result.brightness = cell(record::kNodeBrightness, node);
  result.withComponents =
      record::kComponents < mirror_.size() && mirror_[record::kComponents] == record::kWithComponents;
  for (std::size_t i = 0; i < result.components.size(); ++i)
    result.components[i] = cell(record::kNodeComponents + i * record::kColumn, node);
  return result;
}

std::optional<NodeTime> ProgrammableNodes::time(int node) const {
  if (node < 0 || node >= count()) return {};
  return NodeTime{cell(record::kNodeHour, node), cell(record::kNodeMinute, node)};
}

int MixedNodes::count() const {
  if (base_ >= file_.size()) return 1;
  const std::size_t stored = file_[base_];
  return fits(file_.size(), base_, 1 + stored * record::kMixedNodeSize)
             ? std::max(1, static_cast<int>(stored))
             : 1;
}

std::optional<MixedNode> MixedNodes::operator[](int node) const {
  if (node < 0 || node >= count()) return {};
  const std::size_t at = base_ + 1 + static_cast<std::size_t>(node) * record::kMixedNodeSize;
  if (!fits(file_.size(), at, record::kMixedNodeSize)) return {};
  const auto bytes = file_.subspan(at, record::kMixedNodeSize);
  return MixedNode{{bytes[record::kMixedHour], bytes[record::kMixedMinute]},
                   bytes[record::kMixedKind] == record::kAmbientSlot,
                   bytes[record::kMixedWeekdays],
                   bytes[record::kMixedPercent],
                   bytes[record::kMixedEnabled]};
}

std::optional<NodeTime> MixedNodes::time(int node) const {
  const auto found = (*this)[node];
  return found ? std::optional(found->time) : std::nullopt;
}

int CurrentTimeBelongToWhichNode(const ProgrammableNodes& nodes, const LocalMoment& now) {
  const int last = nodes.count() - 1;
  const uint16_t key = timeKey(now);
  for (int i = 0; i < last; ++i) {
    if (nodes[i].time.key() <= key && key < nodes[i + 1].time.key()) return i;
  }
  return last;
}

uint16_t MixAdjCurrentTimeNode(const MixedNodes& nodes, const LocalMoment& now) {
  const int count = nodes.count();
  const auto enabled = [&](int i) {
    const auto node = nodes[i];
    return node && node->enabled != 0;
  };
  int answer = count - 1;
  while (answer >= 0 && !enabled(answer)) --answer;
  if (answer < 0) return kNoNode;
  for (int i = 0; i < count; ++i) {
    if (!enabled(i)) continue;
    if (nodes[i]->time.key() > timeKey(now)) break;
    answer = i;
  }
  return static_cast<uint16_t>(answer);
}

}  // namespace ORVE_MCUC
