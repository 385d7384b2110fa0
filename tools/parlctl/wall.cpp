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
  SmartScreen screen{.rows = static_cast<uint16_t>(rows),
                     .columns = static_cast<uint16_t>(columns),
                     .cardsPerPort = 0,
                     .mode = modeNumber(arguments.mode),
                     .card = {}};
  if (!arguments.cards.empty()) screen.cardsPerPort = static_cast<uint16_t>(fromOne(arguments.cards, 0xFFFF));
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
  screen.card = {static_cast<uint16_t>(width), static_cast<uint16_t>(height)};
  const unsigned ports = portsOf(arguments);
  if (screen.cardsPerPort == 0)
    screen.cardsPerPort = cardsForPorts(screen, ports == 0 ? map::kMappedPorts : ports);
  const WallPlan plan(screen);
  writeSvg(plan, arguments.svg);
  options.print({planJson(plan), wallText(plan)});
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
  options.print({object, text + (inForce ? "" : "\nnot in force: another configuration was submitted last")});
}

void report(const Options& options, const Verdict& verdict) {
  const bool verified = verdict.difference.none();
  Json object = planJson(verdict.plan);
  object["verified"] = verified;
  object["read_from"] = verdict.way;
  const std::string text = (verified ? "verified (" : "mismatch (") + verdict.way + ")";
  options.print(
      {object,
       summary(verdict.plan.screen()) + '\n' + text + (verified ? "" : ": " + verdict.difference.text()),
       verified ? Outcome::Verified : Outcome::Mismatch});
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
    options.print({object, summary(screen) + "\nsent, although " + problem, Outcome::Accepted});
    return;
  }
  const WallPlan plan(screen);
  writeSvg(plan, arguments.svg);
  if (arguments.wait)
    report(options, verify(options, daemon, screen));
  else
    options.print({planJson(plan), summary(screen) + "\naccepted", Outcome::Accepted});
}

void addScreen(Verb& verb, WallArguments& arguments, const char* portsText) {
  verb.operand("SIZE", arguments.size, "ROWSxCOLUMNS of cards, each from 1 to 255");
  verb.option(
      "--cards", "N", arguments.cards,
      "Cards that one port carries, from 1 to 65535; a port takes whole rows or columns. Without it: the "
      "fewest that feed the wall through the ports");
  verb.option("--ports", "N", arguments.ports, portsText).excludes({"--cards"});
  verb.option(
      "--mode", "MODE", arguments.mode,
      "Connection mode, 0 to 7 or CORNER-rows, CORNER-columns: where the chain of a port begins (top-left, "
      "top-right, bottom-left, bottom-right) and what it runs along");
}

void addSvg(Verb& verb, WallArguments& arguments) {
  verb.option("--svg", "FILE", arguments.svg, "Draw the wall into this file, too").isFile();
}

void addSet(Verb& wall, const Options& options) {
  auto arguments = std::make_shared<WallArguments>();
  Verb& verb = wall.verb("set", "Configure the daemon for a wall");
  addScreen(verb, *arguments, "Ports to use, 1 to 10, without --cards; as many as are linked from port 0 on");
  addSvg(verb, *arguments);
  verb.flag(
      "--wait", arguments->wait,
      "Wait until the daemon has carried it out, and compare what the FPGA holds with the calculation; waits "
      "for --timeout, at least 5 s");
  verb.flag("--force", arguments->force, "Send what the daemon will not map, too");
  verb.example("wall set 4x6 --cards 12 --mode top-left-rows --wait");
  verb.run([&options, arguments] { set(options, *arguments); });
}

void addPreview(Verb& wall, const Options& options) {
  auto arguments = std::make_shared<WallArguments>();
  Verb& verb = wall.verb("preview", "What a wall would be, without a daemon");
  addScreen(verb, *arguments, "Ports to use, 1 to 10, without --cards; all ten");
  verb.option("--card-size", "WxH", arguments->cardSize, "WIDTHxHEIGHT of a card in pixels");
  addSvg(verb, *arguments);
  verb.example("wall preview 4x6 --cards 12 --mode bottom-right-columns --svg wall.svg");
  verb.run([&options, arguments] { preview(options, *arguments); });
}

}  // namespace

void addWall(Verb& root, const Options& options) {
  Verb& wall = root.verb("wall", "Configure a wall of receiving cards and look at it");
  addSet(wall, options);
  addPreview(wall, options);

  auto arguments = std::make_shared<WallArguments>();
  Verb& verb = wall.verb("show", "The wall that the daemon is configured for");
  addSvg(verb, *arguments);
  verb.run([&options, arguments] { show(options, *arguments); });
}

}  // namespace parlctl
