// Walls in the words of results: JSON for programs, lines for people.
#pragma once

#include "wall_daemon.h"
#include "wallchanges.h"
#include "wallcheck.h"

namespace parlctl {

Json screenJson(const SmartScreen& screen);
Json planJson(const WallPlan& plan);
Json findingsJson(const std::vector<Finding>& findings);
Json seenJson(const Seen& seen);
Json changesJson(const std::vector<Change>& changes);

// "wall     4 x 6 cards, 12 per port, mode 0 top-left-rows".
std::string summary(const WallPlan& plan);
// A line each, begun by a line end, at most 80 columns wide; empty when there is none.
std::string findingLines(const std::vector<Finding>& findings);
std::string changeLines(const std::vector<Change>& changes);

}  // namespace parlctl
