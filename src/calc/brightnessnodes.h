// The time nodes of a brightness plan, and which of them a time of day belongs to.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calc/localmoment.h"
#include "maps/brightnessrecord.h"

namespace ORVE_MCUC {

// When a node begins, in BCD.
struct NodeTime {
  uint8_t hour = 0;
  uint8_t minute = 0;

  constexpr uint16_t key() const { return timeKey(hour, minute); }
  constexpr bool comes() const { return isTimeOfDay(hour, minute); }
  bool operator==(const NodeTime&) const = default;
};

// A node of the programmable timetable.
struct ProgrammableNode {
  NodeTime time;
  uint8_t ports = 0;  // bit k: output port k takes it
  uint8_t brightness = 0;
  bool withComponents = false;
  std::array<uint8_t, 4> components{};
};

class ProgrammableNodes {
 public:
  explicit ProgrammableNodes(std::span<const uint8_t> mirror) : mirror_(mirror) {}

  int count() const;  // 1 to 32
  // A node that the plan does not hold is for no port.
  ProgrammableNode operator[](int node) const;
  std::optional<NodeTime> time(int node) const;

 private:
  uint8_t cell(std::size_t column, int node) const;
  std::span<const uint8_t> mirror_;
};

// A time slot of the mixed plan.
struct MixedNode {
  NodeTime time;
  bool ambient = false;
  uint8_t weekdays = 0;
  uint8_t percent = 0;
  uint8_t enabled = 0;

  // Whether it takes effect on a weekday 1..7, whichever day the caller counts from.
  constexpr bool takesEffectOn(int weekday) const {
    return enabled == 1 && (weekdays >> (weekday - 1) & 1) != 0;
  }
};

class MixedNodes {
 public:
  MixedNodes(std::span<const uint8_t> file, std::size_t base) : file_(file), base_(base) {}

  // At least 1: a list of none counts as one node, and so does one that does not lie inside the file.
  int count() const;
  // Nothing for a node that the list or the file does not hold.
  std::optional<MixedNode> operator[](int node) const;
  std::optional<NodeTime> time(int node) const;

 private:
  std::span<const uint8_t> file_;
  std::size_t base_;
};

inline constexpr uint16_t kNoNode = 0xFFFF;

// The node whose time has come last; before the first one's time the last one of the day before. Times are
// expected in ascending order.
int CurrentTimeBelongToWhichNode(const ProgrammableNodes& nodes, const LocalMoment& now);
// The same among the enabled slots; kNoNode when there is none.
uint16_t MixAdjCurrentTimeNode(const MixedNodes& nodes, const LocalMoment& now);

}  // namespace ORVE_MCUC
