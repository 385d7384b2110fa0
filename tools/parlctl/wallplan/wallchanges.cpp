#include "wallchanges.h"

#include "values.h"

namespace parlctl {

namespace {

std::string kindText(const WallPlan& plan) {
  if (!plan.smart()) return "a block for each port";
  const SmartScreen& screen = *plan.smart();
  return sizeText({screen.rows, screen.columns}) + " cards, " + std::to_string(screen.cardsPerPort) +
         " per port, mode " + modeText(screen.mode);
}

std::string cardText(const WallPlan& plan) {
  return sizeText({plan.card().width, plan.card().height});
}

std::string outputText(const WallPlan& plan) {
  return sizeText(plan.size());
}

std::string portText(const WallPlan& plan, unsigned number) {
  const WallPort& port = plan.ports()[number];
  if (port.duplicateOf) return "as port " + std::to_string(*port.duplicateOf);
  if (!port.used) return "not in use";
  return countText(port.chain.size(), "card") + " at " + pairText(port.offset) + ", mode " +
         modeText(port.cable.mode);
}

}  // namespace

std::vector<Change> changesBetween(const std::optional<WallPlan>& before, const WallPlan& after) {
  std::vector<Change> changes;
  const auto add = [&](const std::string& what, const auto& text) {
    const std::string from = before ? text(*before) : "none";
    if (from != text(after)) changes.push_back({what, from, text(after)});
  };
  add("kind", kindText);
  add("card", cardText);
  add("output", outputText);
  for (unsigned port = 0; port < ORVE_MCUC::kMappedPorts; ++port)
    add("port " + std::to_string(port), [port](const WallPlan& plan) { return portText(plan, port); });
  return changes;
}

}  // namespace parlctl
