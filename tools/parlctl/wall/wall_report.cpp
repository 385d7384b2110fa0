#include "wall_report.h"

#include "helptext.h"

namespace parlctl {

namespace {

Json sizeJson(PixelSize size) {
  return {size.width, size.height};
}

Json pixelJson(Pixel at) {
  return {at.x, at.y};
}

Json portJson(const WallPort& port) {
  Json chain = Json::array();
  for (const Pixel card : port.chain) chain.push_back(pixelJson(card));
  return {{"port", port.port},
          {"used", port.used},
          {"window", sizeJson(port.window)},
          {"offset", pixelJson(port.offset)},
          {"cards", port.chain.size()},
          {"mode", port.cable.mode},
          {"duplicate_of", port.duplicateOf ? Json(*port.duplicateOf) : Json()},
          {"chain", std::move(chain)}};
}

}  // namespace

Json screenJson(const SmartScreen& screen) {
  return {{"rows", screen.rows},
          {"columns", screen.columns},
          {"cards_per_port", screen.cardsPerPort},
          {"mode", screen.mode},
          {"mode_name", screen.mode < kModeNames.size() ? std::string(kModeNames[screen.mode]) : ""},
          {"card", sizeJson({screen.card.width, screen.card.height})}};
}

Json planJson(const WallPlan& plan) {
  Json ports = Json::array();
  for (const WallPort& port : plan.ports()) ports.push_back(portJson(port));
  Json object = plan.smart() ? screenJson(*plan.smart())
                             : Json{{"rows", plan.rows()},
                                    {"columns", plan.columns()},
                                    {"card", sizeJson({plan.card().width, plan.card().height})}};
  object["kind"] = plan.smart() ? "smart" : "advanced";
  object["size"] = sizeJson(plan.size());
  object["ports_in_use"] = plan.used().size();
  object["ports"] = std::move(ports);
  return object;
}

Json findingsJson(const std::vector<Finding>& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings)
    list.push_back({{"rule", finding.id},
                    {"port", finding.port ? Json(*finding.port) : Json()},
                    {"text", finding.text},
                    {"remedy", finding.remedy}});
  return list;
}

Json seenJson(const Seen& seen) {
  return {{"result", textOf(seen.outcome).word}, {"text", seen.text}};
}

Json changesJson(const std::vector<Change>& changes) {
  Json list = Json::array();
  for (const Change& change : changes)
    list.push_back({{"what", change.what}, {"from", change.from}, {"to", change.to}});
  return list;
}

std::string summary(const WallPlan& plan) {
  const std::string head = "wall     " + sizeText({plan.rows(), plan.columns()}) + " cards, ";
  if (!plan.smart())
    return head + "a block for each port, " + countText(plan.used().size(), "port") + " in use";
  return head + std::to_string(plan.smart()->cardsPerPort) + " per port, mode " +
         modeText(plan.smart()->mode);
}

std::string findingLines(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings) text += '\n' + wrapped(finding.line(), 5);
  return text;
}

std::string changeLines(const std::vector<Change>& changes) {
  std::string text;
  for (const Change& change : changes) {
    const std::string what =
        change.what + std::string(change.what.size() < 9 ? 9 - change.what.size() : 1, ' ');
    const std::string line = what + change.from + "  ->  " + change.to;
    text += '\n' + (line.size() <= kColumns ? line : what + change.from + "\n      ->  " + change.to);
  }
  return text;
}

}  // namespace parlctl
