#include "wall_arguments.h"

#include <algorithm>

#include "maps/cardmap.h"
#include "wallblocks.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;

constexpr CardSize kAssumedCard{128, 128};

// Ports to spread a wall over when nobody says: those linked from port 0 on, or all when port 0 has no link.
unsigned portsToUse(const WallArguments& arguments, const Surroundings& around) {
  if (!arguments.ports.empty()) return fromOne(arguments.ports, map::kMappedPorts);
  if (!around.links) return map::kMappedPorts;
  unsigned count = 0;
  while (count < map::kMappedPorts && count < around.links->size() && (*around.links)[count] == count)
    ++count;
  return count == 0 ? map::kMappedPorts : count;
}

bool lastCardAnswers(peer::Peer& daemon, const WallPort& port) {
  const peer::Frame reply = daemon.exchange({.deviceType = map::card::kReceivingCard,
                                             .port = static_cast<uint8_t>(port.port),
                                             .board = static_cast<uint16_t>(port.chain.size() - 1),
                                             .address = map::card::kSize,
                                             .length = 4});
  return reply.ack == 0 && reply.data.size() == 4;
}

}  // namespace

void addScreen(Verb& verb, WallArguments& arguments, bool sizeRequired) {
  const std::string sizeText =
      std::string("ROWSxCOLUMNS of cards, each from 1 to 255") + (sizeRequired ? "; or --blocks" : "");
  verb.optionalOperand("SIZE", arguments.size, sizeText);
  verb.option(
      "--cards", "N", arguments.cards,
      "Cards that one port carries, from 1 to 65535; a port takes whole rows or columns. Without it: the "
      "fewest that feed the wall through the ports");
  verb.option("--ports", "N", arguments.ports,
              "Ports to use, 1 to 10, without --cards. Without it: those that are linked from port 0 on, or "
              "all ten")
      .excludes({"--cards"});
  verb.option(
      "--mode", "MODE", arguments.mode,
      "Connection mode, 0 to 7 or CORNER-rows, CORNER-columns: where the chain of a port begins (top-left, "
      "top-right, bottom-left, bottom-right) and what it runs along. Without it: 0, top-left-rows");
  verb.option(
          "--blocks", "FILE", arguments.blocks,
          "A block for each port instead: lines such as '0: 2x3 at 0,0 top-left-rows'; - is standard input")
      .excludes({"--cards", "--ports", "--mode"})
      .isFile();
}

void addSvg(Verb& verb, WallArguments& arguments) {
  verb.option("--svg", "FILE", arguments.svg, "Draw it into this file, too").isFile();
}

std::string Surroundings::text() const {
  const std::string cards = "cards of " + sizeText({card.size.width, card.size.height});
  if (!asked) return "assumed: " + cards + ", every port linked";
  return "from the daemon: " + (links ? "ports with a link " + rangesText(*links) : "links not told") + "; " +
         cards + (card.measured ? ", measured" : ", assumed by the daemon");
}

Surroundings surroundings(peer::Peer* daemon, const WallArguments& arguments) {
  Surroundings around{{kAssumedCard, false}, std::nullopt, daemon != nullptr};
  if (daemon != nullptr) {
    around.links = linkedPorts(*daemon);
    around.card = cardSize(*daemon);
  }
  if (arguments.cardSize.empty()) return around;
  const auto [width, height] = product(arguments.cardSize, 0xFFFF);
  around.card = {{static_cast<uint16_t>(width), static_cast<uint16_t>(height)}, true};
  return around;
}

std::string WantedWall::problem() const {
  return blocks ? wallProblem(*blocks, card) : wallProblem(*smart);
}

WallPlan WantedWall::plan() const {
  return plan(card);
}

WallPlan WantedWall::plan(CardSize other) const {
  if (blocks) return {*blocks, other};
  SmartScreen screen = *smart;
  screen.card = other;
  return WallPlan(screen);
}

void WantedWall::putInto(WallRecord& record) const {
  if (blocks)
    record.set(*blocks);
  else
    record.set(*smart);
}

WantedWall describedWall(const WallArguments& arguments) {
  if (!arguments.size.empty() && !arguments.blocks.empty())
    throw Error(Failure::Usage, "SIZE and --blocks exclude each other");
  if (!arguments.blocks.empty()) return {std::nullopt, readBlocks(arguments.blocks), {}};
  if (arguments.size.empty())
    throw Error(Failure::Usage, "a wall needs SIZE (ROWSxCOLUMNS) or --blocks FILE");
  const auto [rows, columns] = product(arguments.size, 0xFF);
  SmartScreen screen{.rows = static_cast<uint16_t>(rows),
                     .columns = static_cast<uint16_t>(columns),
                     .cardsPerPort = 0,
                     .mode = arguments.mode.empty() ? uint8_t{0} : modeNumber(arguments.mode),
                     .card = {}};
  if (!arguments.cards.empty()) screen.cardsPerPort = static_cast<uint16_t>(fromOne(arguments.cards, 0xFFFF));
  if (!arguments.ports.empty()) fromOne(arguments.ports, map::kMappedPorts);
  return {screen, std::nullopt, {}};
}

WantedWall complete(WantedWall wall, const WallArguments& arguments, const Surroundings& around) {
  wall.card = around.card.size;
  if (!wall.smart) return wall;
  wall.smart->card = around.card.size;
  if (wall.smart->cardsPerPort == 0)
    wall.smart->cardsPerPort = cardsForPorts(*wall.smart, portsToUse(arguments, around));
  return wall;
}

WallFacts wallFacts(peer::Peer* daemon, const WallPlan& plan, const Surroundings& around) {
  WallFacts facts{around.links, std::nullopt, {}};
  if (daemon == nullptr) return facts;
  facts.cardMeasured = around.card.measured;
  for (const WallPort& port : plan.used())
    if ((!around.links || std::ranges::find(*around.links, port.port) != around.links->end()) &&
        !lastCardAnswers(*daemon, port))
      facts.silentPorts.push_back(port.port);
  return facts;
}

}  // namespace parlctl
