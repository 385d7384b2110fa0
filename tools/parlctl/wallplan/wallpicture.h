// A wall for people.
#pragma once

#include <string>
#include <vector>

#include "wallplan.h"

namespace parlctl {

// The wall from the front, one cell a card, and a table of the ports; at most 80 columns wide. Larger walls
// have one character a card, and the largest, or blocks that lie on no common grid, the table alone.
std::string wallText(const WallPlan& plan);

// The same as an SVG document, at most about 1200 pixels wide, with lines of notes under the heading: what
// was found of it in the FPGA, and what is wrong with it.
std::string wallSvg(const WallPlan& plan, const std::vector<std::string>& notes = {});

// The colour of a port in all pictures.
const char* portColour(unsigned port);

// Cables to print and to take along: the controller, a numbered cable for each port in use, the run of each
// chain, and a from-to list. Rear: as somebody behind the wall sees it.
struct WiringView {
  bool rear = false;
  std::optional<unsigned> port;  // this one alone
};
std::string wiringSvg(const WallPlan& plan, const WiringView& view);
std::string wiringText(const WallPlan& plan, const WiringView& view);

}  // namespace parlctl
