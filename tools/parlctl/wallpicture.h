// A wall for people and for programs.
#pragma once

#include <string>

#include "wallplan.h"

namespace parlctl {

// The wall from the front, one cell a card, and a table of the ports. Walls of more than 24 columns or 64
// rows have one character a card.
std::string wallText(const WallPlan& plan);

// The same as an SVG document, at most about 1200 pixels wide.
std::string wallSvg(const WallPlan& plan);

}  // namespace parlctl
