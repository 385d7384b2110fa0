// wall set, show, preview: the smart screen configuration.
#include <algorithm>
#include <fstream>
#include <memory>

#include "commands.h"
#include "wall_daemon.h"
#include "wallpicture.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;

struct WallArguments {
  std::string size;
  std::string cards;
  std::string ports;
  std::string mode = "0";
  std::string cardSize = "128x128";
  std::string svg;
  bool wait = false;
  bool force = false;
};

uint16_t fromOne(const std::string& text, uint32_t limit) {
  const uint32_t value = number(text, limit);
  if (value == 0) throw Error(Failure::Usage, "'" + text + "' is not from 1 to " + std::to_string(limit));
  return static_cast<uint16_t>(value);
}

// "4x6".
std::pair<uint16_t, uint16_t> product(const std::string& text, uint32_t limit) {
  const std::size_t cross = text.find('x');
  if (cross == std::string::npos)
    throw Error(Failure::Usage, "not two numbers with an x between: '" + text + "'");
  return {fromOne(text.substr(0, cross), limit), fromOne(text.substr(cross + 1), limit)};
}

uint8_t modeNumber(const std::string& text) {
  const auto* name = std::find(kModeNames.begin(), kModeNames.end(), text);
  if (name != kModeNames.end()) return static_cast<uint8_t>(name - kModeNames.begin());
  if (text.find_first_not_of("0123456789") != std::string::npos)
    throw Error(Failure::Usage, "'" + text + "' is no connection mode: they are 0 to 7, or names such as " +
                                    std::string(kModeNames[0]));
  return static_cast<uint8_t>(number(text, map::kConnectionModes - 1));
}

// Everything but the cards per port and the size of a card.
SmartScreen screenOf(const WallArguments& arguments) {
  const auto [rows, columns] = product(arguments.size, 0xFF);
  SmartScreen screen{
      .rows = rows, .columns = columns, .cardsPerPort = 0, .mode = modeNumber(arguments.mode), .card = {}};
  if (!arguments.cards.empty()) screen.cardsPerPort = fromOne(arguments.cards, 0xFFFF);
  return screen;
}

// Ports from --ports; 0 without it.
unsigned portsOf(const WallArguments& arguments) {
  return arguments.ports.empty() ? 0 : fromOne(arguments.ports, map::kMappedPorts);
}

Json sizeJson(PixelSize size) {
  return {size.width, size.height};
}

Json pixelJson(Pixel at) {
  return {at.x, at.y};
}

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
  for (const WallPort& port : plan.ports()) {
    Json chain = Json::array();
    for (const Pixel card : port.chain) chain.push_back(pixelJson(card));
    ports.push_back({{"port", port.port},
                     {"window", sizeJson(port.window)},
                     {"offset", pixelJson(port.offset)},
                     {"cards", port.chain.size()},
                     {"duplicate_of", port.duplicateOf ? Json(*port.duplicateOf) : Json()},
                     {"chain", std::move(chain)}});
  }
  Json object = screenJson(plan.screen());
  object["size"] = sizeJson(plan.size());
  object["ports_in_use"] = plan.used().size();
  object["ports"] = std::move(ports);
  return object;
}

std::string summary(const SmartScreen& screen) {
  return "wall     " + sizeText({screen.rows, screen.columns}) + " cards, " +
         std::to_string(screen.cardsPerPort) + " per port, mode " + modeText(screen.mode);
}

void writeSvg(const WallPlan& plan, const std::string& path) {
  if (path.empty()) return;
  std::ofstream file(path, std::ios::binary);
  file << wallSvg(plan) << std::flush;
  if (!file) throw Error(Failure::Usage, "cannot write " + path);
}

void preview(const Options& options, const WallArguments& arguments) {
  SmartScreen screen = screenOf(arguments);
  const auto [width, height] = product(arguments.cardSize, 0xFFFF);
  screen.card = {width, height};
  const unsigned ports = portsOf(arguments);
  if (screen.cardsPerPort == 0)
    screen.cardsPerPort = cardsForPorts(screen, ports == 0 ? map::kMappedPorts : ports);
  const WallPlan plan(screen);
  writeSvg(plan, arguments.svg);
  print(options, planJson(plan), wallText(plan));
}

void show(const Options& options, const WallArguments& arguments) {
  peer::Peer daemon = options.connect(peer::toolServiceCode());
  const auto [screen, inForce] = configuredScreen(daemon);
  const std::string problem = wallProblem(screen);
  Json object;
  std::string text;
  if (problem.empty() || !arguments.svg.empty()) {
    const WallPlan plan(screen);
    writeSvg(plan, arguments.svg);
    object = planJson(plan);
    text = wallText(plan);
  } else {
    object = screenJson(screen);
    object["problem"] = problem;
    text = summary(screen) + "\nnot mapped: " + problem;
  }
  object["in_force"] = inForce;
  print(options, object, text + (inForce ? "" : "\nnot in force: another configuration was submitted last"));
}

void report(const Options& options, const Verdict& verdict) {
  const bool verified = verdict.difference.none();
  Json object = planJson(verdict.plan);
  object["verified"] = verified;
  object["read_from"] = verdict.way;
  const std::string text = (verified ? "verified (" : "mismatch (") + verdict.way + ")";
  print(options, object, summary(verdict.plan.screen()) + '\n' + text);
  if (!verified) throw Error(Failure::Mismatch, "mismatch: " + verdict.difference.text());
}

void set(const Options& options, const WallArguments& arguments) {
  SmartScreen screen = screenOf(arguments);
  unsigned ports = portsOf(arguments);
  peer::Peer daemon = options.connect(peer::toolServiceCode());
  screen.card = cardSize(daemon);
  if (screen.cardsPerPort == 0) {
    if (ports == 0) ports = linkedPorts(daemon);
    screen.cardsPerPort = cardsForPorts(screen, ports);
  }
  const std::string problem = wallProblem(screen);
  const bool plain = !arguments.wait && arguments.svg.empty();  // nothing is calculated here
  if (!problem.empty() && !(arguments.force && plain))
    throw Error(Failure::Usage, problem + (plain ? " (--force sends it all the same)" : ""));
  submit(daemon, screen);
  if (!problem.empty()) {
    Json object = screenJson(screen);
    object["problem"] = problem;
    print(options, object, summary(screen) + "\nsent, although " + problem);
    return;
  }
  const WallPlan plan(screen);
  writeSvg(plan, arguments.svg);
  if (arguments.wait)
    report(options, verify(options, daemon, screen));
  else
    print(options, planJson(plan), summary(screen) + "\nsent");
}

void addScreen(CLI::App& verb, const std::shared_ptr<WallArguments>& arguments, const char* portsText) {
  verb.add_option("size", arguments->size, "ROWSxCOLUMNS of cards, each from 1 to 255")->required();
  CLI::Option* cards =
      verb.add_option("--cards", arguments->cards,
                      "Cards that one port carries, from 1 to 65535; a port takes whole rows or columns. "
                      "Without it: the fewest that feed the wall through the ports");
  verb.add_option("--ports", arguments->ports, portsText)->excludes(cards);
  verb.add_option("--mode", arguments->mode,
                  "Connection mode, 0 to 7 or CORNER-rows, CORNER-columns: where the chain of a port begins "
                  "(top-left, top-right, bottom-left, bottom-right) and what it runs along")
      ->capture_default_str();
}

void addSvg(CLI::App& verb, const std::shared_ptr<WallArguments>& arguments) {
  verb.add_option("--svg", arguments->svg, "Draw the wall into this file, too");
}

void addSet(CLI::App& wall, const Options& options) {
  auto arguments = std::make_shared<WallArguments>();
  CLI::App* verb = wall.add_subcommand("set", "Configure the daemon for a wall");
  addScreen(*verb, arguments, "Ports to use, 1 to 10, without --cards; as many as are linked from port 0 on");
  addSvg(*verb, arguments);
  verb->add_flag("--wait", arguments->wait,
                 "Wait until the daemon has carried it out, and compare what the FPGA holds with the "
                 "calculation; waits for --timeout, at least 5 s");
  verb->add_flag("--force", arguments->force, "Send what the daemon will not map, too");
  verb->footer("Example: parlctl wall set 4x6 --cards 12 --mode top-left-rows --wait");
  verb->callback([&options, arguments] { set(options, *arguments); });
}

void addPreview(CLI::App& wall, const Options& options) {
  auto arguments = std::make_shared<WallArguments>();
  CLI::App* verb = wall.add_subcommand("preview", "What a wall would be, without a daemon");
  addScreen(*verb, arguments, "Ports to use, 1 to 10, without --cards; all ten");
  verb->add_option("--card-size", arguments->cardSize, "WIDTHxHEIGHT of a card in pixels")
      ->capture_default_str();
  addSvg(*verb, arguments);
  verb->footer("Example: parlctl wall preview 4x6 --cards 12 --mode bottom-right-columns --svg wall.svg");
  verb->callback([&options, arguments] { preview(options, *arguments); });
}

}  // namespace

void addWall(CLI::App& app, const Options& options) {
  CLI::App* wall = app.add_subcommand("wall", "Configure a wall of receiving cards and look at it");
  wall->require_subcommand(1);
  addSet(*wall, options);
  addPreview(*wall, options);

  auto arguments = std::make_shared<WallArguments>();
  CLI::App* verb = wall->add_subcommand("show", "The wall that the daemon is configured for");
  addSvg(*verb, arguments);
  verb->callback([&options, arguments] { show(options, *arguments); });
}

}  // namespace parlctl
