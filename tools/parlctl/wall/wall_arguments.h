// What the arguments of a wall mean: the same for set, preview and check.
#pragma once

#include "commandline.h"
#include "wall_daemon.h"
#include "wallcheck.h"

namespace parlctl {

struct WallArguments {
  std::string size;    // empty: no wall is described
  std::string blocks;  // a file
  std::string cards;
  std::string ports;
  std::string mode;      // empty: 0
  std::string cardSize;  // empty: as the daemon says, or 128x128
  std::string svg;
  std::string port;
  bool wait = false;
  bool force = false;
  bool plan = false;
  bool strict = false;
  bool rear = false;

  // Whether there is something that means nothing without SIZE.
  bool detailed() const { return !cards.empty() || !ports.empty() || !mode.empty(); }
};

void addScreen(Verb& verb, WallArguments& arguments, bool sizeRequired);
void addSvg(Verb& verb, WallArguments& arguments);

// What stands around the wall: asked of the daemon, or assumed when there is none.
struct Surroundings {
  MeasuredCard card;
  std::optional<std::vector<unsigned>> links;  // nothing: nobody was asked, or nobody told
  bool asked = false;
  std::string text() const;  // where they come from
};
Surroundings surroundings(peer::Peer* daemon, const WallArguments& arguments);

// A wall as the arguments describe it. problem(): why the daemon would not map it.
struct WantedWall {
  std::optional<SmartScreen> smart;  // one of the two
  std::optional<AdvancedScreen> blocks;
  CardSize card;

  std::string problem() const;
  WallPlan plan() const;  // throws peer::Error (Usage) with the problem
  WallPlan plan(CardSize other) const;
  void putInto(WallRecord& record) const;
  bool isAdvanced() const { return blocks.has_value(); }
};
// Understands what needs no daemon; throws peer::Error (Usage) on what is no wall at all.
WantedWall describedWall(const WallArguments& arguments);
// Fills in what was left to the surroundings: card size and cards per port.
WantedWall complete(WantedWall wall, const WallArguments& arguments, const Surroundings& around);

// What the rules need beside the plan; asks the last card of each port in use when there is a daemon.
WallFacts wallFacts(peer::Peer* daemon, const WallPlan& plan, const Surroundings& around);

}  // namespace parlctl
