// What a new wall changes of the one that is there.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "wallplan.h"

namespace parlctl {

struct Change {
  std::string what;  // "kind", "output", "port 3"
  std::string from;
  std::string to;
};

// Kind, sizes and ports in their order; only what differs. Before: nothing when there is no wall, or none
// that is mapped.
std::vector<Change> changesBetween(const std::optional<WallPlan>& before, const WallPlan& after);

}  // namespace parlctl
