// Mistakes that make walls dark, named before they are made. docs/wall-check.md explains each rule with a
// picture.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "wallplan.h"

namespace parlctl {

struct WallRule {
  std::string_view id;
  std::string_view title;
};
inline constexpr std::array kWallRules{
    WallRule{"W101", "a port in use has no link"},
    WallRule{"W102", "more cards on a cable than allowed"},
    WallRule{"W103", "the last card of a port does not answer"},
    WallRule{"W104", "the card size is assumed, not measured"},
    WallRule{"W105", "a window reaches over the edge or over a neighbour"},
    WallRule{"W201", "two blocks overlap"},
    WallRule{"W202", "blocks leave a gap"},
    WallRule{"W203", "a block lies outside of the grid of cards"},
    WallRule{"W204", "a linked port has no block"},
};

// What is known beside the wall itself; what nobody asked is left out and not judged.
struct WallFacts {
  std::optional<std::vector<unsigned>> links{};  // output ports with a link
  std::optional<bool> cardMeasured{};
  std::vector<unsigned> silentPorts{};  // whose last card was asked and did not answer
};

struct Finding {
  std::string id;
  std::optional<unsigned> port;
  std::string text;  // what is wrong, with the numbers
  std::string remedy;
  // "W101 port 3: no link; plug the cable in, or …"
  std::string line() const;
};

// In the order of the rules, then of the ports.
std::vector<Finding> checkWall(const WallPlan& plan, const WallFacts& facts);

}  // namespace parlctl
