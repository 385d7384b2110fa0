// doctor: what is wrong with a running system, check by check.
#include <sys/statvfs.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "commands.h"
#include "helptext.h"
#include "maps/cardmap.h"
#include "report.h"
#include "wall_arguments.h"
#include "wall_daemon.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;

enum class Health { Good, Bad, Unknown };
constexpr const char* kHealthWords[] = {"ok", "BAD", "?"};

struct Check {
  std::string name;
  Health health = Health::Unknown;
  std::string text;
};

// The service refuses the identity of a peer that is connected. Where LSD is not, this is LSD for a moment.
Check lsdConnected(const Options& options) {
  try {
    options.connect(peer::kLsd);
    return {"LSD", Health::Bad, "LSD is not connected"};
  } catch (const Error& error) {
    if (error.failure() != Failure::NoDaemon) throw;
    return {"LSD", Health::Good, "LSD is connected"};
  }
}

Check wallInForce(const Options& options, peer::Peer& daemon, const WallRecord& record,
                  const WallPlan& plan) {
  const Seen seen = lookAtFpga(options, daemon, plan);
  const Health health = seen.outcome == Outcome::Verified  ? Health::Good
                        : seen.outcome == Outcome::Differs ? Health::Bad
                                                           : Health::Unknown;
  return {"wall", health, record.statusText() + ": " + seen.text};
}

Check wallSaved(const Options& options, const WallPlan& plan) {
  const Seen saved = lookAtFlash(options, plan);
  const Health health = saved.outcome == Outcome::Verified  ? Health::Good
                        : saved.outcome == Outcome::Differs ? Health::Bad
                                                            : Health::Unknown;
  return {"saved", health, saved.text};
}

std::string portsText(const std::vector<unsigned>& ports) {
  return (ports.size() == 1 ? "port " : "ports ") + rangesText(ports);
}

Check portsLinked(const WallPlan& plan, const Surroundings& around) {
  if (!around.links) return {"links", Health::Unknown, "the daemon tells nothing but zeros of the FPGA"};
  std::vector<unsigned> missing;
  for (const WallPort& port : plan.used())
    if (std::ranges::find(*around.links, port.port) == around.links->end()) missing.push_back(port.port);
  if (missing.empty()) return {"links", Health::Good, "every port in use is linked"};
  return {"links", Health::Bad, "in use without a link: " + portsText(missing)};
}

Check cardsAnswer(peer::Peer& daemon, const WallPlan& plan, const Surroundings& around) {
  const WallFacts facts = wallFacts(&daemon, plan, around);
  if (!facts.silentPorts.empty())
    return {"cards", Health::Bad, "the last card does not answer on " + portsText(facts.silentPorts)};
  if (!around.card.measured) return {"cards", Health::Bad, "no card has told its size: it is assumed"};
  return {"cards", Health::Good, "the last card of every linked port in use answers"};
}

std::vector<Check> wallChecks(const Options& options, peer::Peer& daemon) {
  const Surroundings around = surroundings(&daemon, {});
  const WallRecord record = readRecord(daemon);
  if (record.isEmpty() && !record.isAdvanced()) return {{"wall", Health::Bad, "no wall is configured"}};
  try {
    const WallPlan plan = record.plan(around.card.size);
    return {wallInForce(options, daemon, record, plan), wallSaved(options, plan), portsLinked(plan, around),
            cardsAnswer(daemon, plan, around)};
  } catch (const Error& error) {
    if (error.failure() != Failure::Usage) throw;
    return {{"wall", Health::Bad, record.statusText() + ", which is not mapped: " + error.what()}};
  }
}

Check clockPlausible(const Options& options) {
  constexpr int64_t kMostSeconds = 120;
  if (!options.besideBoard())
    return {"clock", Health::Unknown, "the board's clock is not to be seen from here"};
  const int64_t offset = options.board().clockOffset();
  return {"clock", std::abs(offset) <= kMostSeconds ? Health::Good : Health::Bad,
          "the board's clock is " + std::to_string(offset) + " s from this machine's"};
}

Check logSpace(const Options& options) {
  constexpr uint64_t kWanted = 200;  // MiB: the trace takes up to ten files of 20
  struct statvfs room {};
  if (!options.besideBoard() || statvfs((options.board().directory() / "log").c_str(), &room) != 0)
    return {"log", Health::Unknown, "the trace's directory is not to be seen from here"};
  const uint64_t free = uint64_t{room.f_bavail} * room.f_frsize >> 20;
  return {"log", free >= kWanted ? Health::Good : Health::Bad,
          std::to_string(free) + " MiB free for the trace"};
}

std::vector<Check> allChecks(const Options& options) {
  std::vector<Check> checks;
  try {
    peer::Peer daemon = options.connect();
    daemon.read(0xF0000000, 1);
    checks.push_back({"daemon", Health::Good, "answers"});
    checks.push_back(lsdConnected(options));
    for (Check& check : wallChecks(options, daemon)) checks.push_back(std::move(check));
  } catch (const Error& error) {
    checks.push_back({"daemon", Health::Bad, error.what()});
  }
  checks.push_back(clockPlausible(options));
  checks.push_back(logSpace(options));
  return checks;
}

}  // namespace

Result doctorResult(const Options& options) {
  Result result;
  Json list = Json::array();
  for (const Check& check : allChecks(options)) {
    const char* word = kHealthWords[static_cast<int>(check.health)];
    list.push_back({{"check", check.name}, {"health", word}, {"text", check.text}});
    std::string head = word;
    head.resize(5, ' ');
    head += check.name;
    head.resize(14, ' ');
    result.text += (result.text.empty() ? "" : "\n") + wrapped(head + check.text, 14);
    if (check.health == Health::Bad) result.outcome = Outcome::Found;
  }
  result.fields["checks"] = list;
  return result;
}

void addDoctor(Verb& root, const Options& options) {
  root.verb("doctor", "Look for what is wrong: daemon, LSD, wall, links, cards, clock and room for the trace")
      .note(
          "Ends with 0 when nothing is BAD and with 1 otherwise. ? is what cannot be seen from here. Whether "
          "LSD is "
          "connected is found out by trying to be LSD: where it is not, the daemon sees one for a moment.")
      .run([&options] { options.print(doctorResult(options)); });
}

}  // namespace parlctl
