#include "wallcheck.h"

#include <algorithm>

#include "values.h"

namespace parlctl {

namespace {

using Findings = std::vector<Finding>;

bool contains(const std::vector<unsigned>& list, unsigned value) {
  return std::ranges::find(list, value) != list.end();
}

void unlinked(const WallPlan& plan, const WallFacts& facts, Findings& found) {
  if (!facts.links) return;
  for (const WallPort& port : plan.used())
    if (!contains(*facts.links, port.port))
      found.push_back({"W101", port.port,
                       "no link, and " + countText(port.chain.size(), "card") + " behind it",
                       "plug the cable in, or use other ports (--ports, --cards)"});
}

void crowded(const WallPlan& plan, const WallFacts& /*facts*/, Findings& found) {
  if (!plan.smart()) return;
  const unsigned allowed = plan.smart()->cardsPerPort;
  for (const WallPort& port : plan.used())
    if (port.chain.size() > allowed)
      found.push_back({"W102", port.port,
                       countText(port.chain.size(), "card") + " on the cable, " + std::to_string(allowed) +
                           " are allowed: a port takes whole lines of " +
                           std::to_string(port.cable.lineLength),
                       "allow " + std::to_string(port.chain.size()) + " (--cards), or a multiple of " +
                           std::to_string(port.cable.lineLength) + " below " + std::to_string(allowed + 1)});
}

void silent(const WallPlan& plan, const WallFacts& facts, Findings& found) {
  for (const WallPort& port : plan.used())
    if (contains(facts.silentPorts, port.port))
      found.push_back({"W103", port.port,
                       "card " + std::to_string(port.chain.size() - 1) + ", the last of " +
                           countText(port.chain.size(), "card") + ", does not answer",
                       "count the cards on the cable, and look for a loose one"});
}

void assumed(const WallPlan& plan, const WallFacts& facts, Findings& found) {
  if (facts.cardMeasured.value_or(true)) return;
  found.push_back({"W104", std::nullopt,
                   "cards of " + sizeText({plan.card().width, plan.card().height}) +
                       " are assumed: none has told its size",
                   "link a port with a card, and configure the wall again"});
}

void window(const WallPlan& plan, const WallFacts& /*facts*/, Findings& found) {
  const auto used = plan.used();
  for (const WallPort& port : used) {
    const PixelBox mine{port.offset, port.window};
    const std::string at = "window " + sizeText(port.window) + " at " + pairText(port.offset);
    if (mine.right() > plan.size().width || mine.bottom() > plan.size().height)
      found.push_back({"W105", port.port, at + " reaches over the edge of " + sizeText(plan.size()),
                       "choose cards per port that fill every port alike"});
    for (const WallPort& other : used)
      if (plan.smart() && other.port < port.port && overlap(mine, {other.offset, other.window}))
        found.push_back({"W105", port.port, at + " reaches over that of port " + std::to_string(other.port),
                         "choose cards per port that fill every port alike"});
  }
}

void overlapping(const WallPlan& plan, const WallFacts& /*facts*/, Findings& found) {
  if (plan.smart()) return;
  const auto used = plan.used();
  for (const WallPort& port : used)
    for (const WallPort& other : used)
      if (other.port < port.port && overlap(plan.boxOf(port), plan.boxOf(other)))
        found.push_back({"W201", port.port,
                         "its block at " + pairText(port.offset) + " overlaps that of port " +
                             std::to_string(other.port) + " at " + pairText(other.offset),
                         "move one of them, or take away rows or columns"});
}

// Pixels that no block covers; blocks that overlap are counted once by cutting the wall along all edges.
uint64_t uncovered(const WallPlan& plan) {
  std::vector<uint32_t> x{0, plan.size().width};
  std::vector<uint32_t> y{0, plan.size().height};
  std::vector<PixelBox> boxes;
  for (const WallPort& port : plan.used()) {
    const PixelBox& box = boxes.emplace_back(plan.boxOf(port));
    x.insert(x.end(), {box.at.x, box.right()});
    y.insert(y.end(), {box.at.y, box.bottom()});
  }
  std::ranges::sort(x);
  std::ranges::sort(y);
  uint64_t pixels = 0;
  for (std::size_t i = 0; i + 1 < x.size(); ++i)
    for (std::size_t k = 0; k + 1 < y.size(); ++k) {
      const PixelBox piece{{x[i], y[k]}, {x[i + 1] - x[i], y[k + 1] - y[k]}};
      const bool covered =
          std::ranges::any_of(boxes, [&](const PixelBox& box) { return overlap(box, piece); });
      if (!covered) pixels += uint64_t{piece.size.width} * piece.size.height;
    }
  return pixels;
}

void gap(const WallPlan& plan, const WallFacts& /*facts*/, Findings& found) {
  if (plan.smart()) return;
  const uint64_t card = uint64_t{plan.card().width} * plan.card().height;
  if (const uint64_t pixels = uncovered(plan); pixels != 0)
    found.push_back({"W202", std::nullopt,
                     "no block covers " + std::to_string(pixels) + " pixels, as many as " +
                         countText(static_cast<std::size_t>((pixels + card - 1) / card), "card") +
                         " would, of " + sizeText(plan.size()),
                     "add the missing block, or move the blocks together"});
}

void offGrid(const WallPlan& plan, const WallFacts& /*facts*/, Findings& found) {
  if (plan.smart()) return;
  for (const WallPort& port : plan.used())
    if (port.offset.x % plan.card().width != 0 || port.offset.y % plan.card().height != 0)
      found.push_back({"W203", port.port,
                       "its block at " + pairText(port.offset) + " is outside of the grid of cards of " +
                           sizeText({plan.card().width, plan.card().height}),
                       "begin it at a multiple of the card size, unless the cabinets stand so"});
}

void blockless(const WallPlan& plan, const WallFacts& facts, Findings& found) {
  if (plan.smart() || !facts.links) return;
  for (const WallPort& port : plan.ports())
    if (!port.used && contains(*facts.links, port.port))
      found.push_back({"W204", port.port, "a link, but no block: its cards repeat the card at the upper left",
                       "give the port a block, or take the cable out"});
}

}  // namespace

std::string Finding::line() const {
  return id + (port ? " port " + std::to_string(*port) : " wall") + ": " + text + "; " + remedy;
}

std::vector<Finding> checkWall(const WallPlan& plan, const WallFacts& facts) {
  constexpr std::array kChecks{&unlinked,    &crowded, &silent,  &assumed,  &window,
                               &overlapping, &gap,     &offGrid, &blockless};
  static_assert(kChecks.size() == kWallRules.size());
  Findings found;
  for (const auto check : kChecks) check(plan, facts, found);
  return found;
}

}  // namespace parlctl
