// Rules that a brightness plan should keep: what the daemon would do with it, and is not what its author
// meant.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "brightnessplan.h"

namespace parlctl {

struct PlanFinding {
  std::string rule;   // "order", "percent", "weekdays", ...: one word for programs
  std::string where;  // "slot 3", "lux map", "header"
  std::string text;
  bool warning = false;  // the plan does what it says, but perhaps not what was meant
};

// Of a plan, and of the bytes of a file beyond what its plan says.
std::vector<PlanFinding> checkPlan(const BrightnessPlan& plan);
std::vector<PlanFinding> checkFile(std::span<const uint8_t> file);

}  // namespace parlctl
