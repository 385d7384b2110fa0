// wall: screen configurations, from the first sketch to the comparison with the FPGA.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "helptext.h"
#include "output.h"
#include "wall_arguments.h"
#include "wall_report.h"
#include "wall_state.h"
#include "wallblocks.h"
#include "wallpicture.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;

std::optional<peer::Peer> daemonIfThere(const Options& options) {
  try {
    return options.connect();
  } catch (const Error& error) {
    if (error.failure() != Failure::NoDaemon) throw;
    return std::nullopt;
  }
}

peer::Peer* pointer(std::optional<peer::Peer>& daemon) {
  return daemon ? &*daemon : nullptr;
}

std::vector<std::string> notesOf(const std::string& verdict, const std::vector<Finding>& findings) {
  std::vector<std::string> notes{verdict.substr(0, verdict.find('\n'))};
  for (const Finding& finding : findings)
    notes.push_back(finding.id + (finding.port ? " port " + std::to_string(*finding.port) : "") + ": " +
                    finding.text);
  return notes;
}

void preview(const Options& options, const WallArguments& arguments) {
  WantedWall wanted = describedWall(arguments);
  OutputFile svg(arguments.svg);
  std::optional<peer::Peer> daemon = daemonIfThere(options);
  const Surroundings around = surroundings(pointer(daemon), arguments);
  wanted = complete(wanted, arguments, around);
  const WallPlan plan = wanted.plan();
  const auto findings = checkWall(plan, wallFacts(pointer(daemon), plan, around));
  svg.write(wallSvg(plan, notesOf("A preview, not what the FPGA holds", findings)));
  Json fields = planJson(plan);
  fields["warnings"] = findingsJson(findings);
  fields["around"] = around.text();
  options.print({fields, wallText(plan) + "\n\n" + wrapped(around.text()) + findingLines(findings)});
}

// A record of what is no wall: what it says, and why it is none.
Result unmapped(const WallRecord& record, const std::string& problem, CardSize card) {
  Json fields = screenJson(record.smart(card));
  fields["record"] = record.statusText();
  if (record.isEmpty() && !record.isAdvanced())
    return {fields, "No wall is configured (record: " + record.statusText() + ")"};
  fields["problem"] = problem;
  return {fields, "record   " + record.statusText() + "\n" + wrapped("not mapped: " + problem),
          Outcome::Differs};
}

// The wall that is there, or what there is instead of one.
struct Recorded {
  std::optional<WallPlan> plan;
  Result instead;
};

Recorded recorded(const WallRecord& record, CardSize card) {
  const std::string problem =
      record.isAdvanced() ? wallProblem(record.advanced(), card) : wallProblem(record.smart(card));
  if (!problem.empty()) return {std::nullopt, unmapped(record, problem, card)};
  return {record.plan(card), {}};
}

void printNoWall(const Options& options, Result instead, const OutputFile& svg) {
  if (svg.wanted()) {
    instead.text += "\nnothing is drawn into " + svg.path();
    if (instead.outcome == Outcome::Done) instead.outcome = Outcome::Found;
  }
  options.print(instead);
}

// The wall to look at: the one described, or the one that is there.
struct Judged {
  std::optional<peer::Peer> daemon;
  Surroundings around;
  Recorded wall;
};

Judged judged(const Options& options, const WallArguments& arguments) {
  const bool described = !arguments.size.empty() || !arguments.blocks.empty();
  if (!described && arguments.detailed())
    throw Error(Failure::Usage, "--cards, --ports and --mode describe a wall of SIZE, which is missing");
  std::optional<WantedWall> wanted;
  if (described) wanted = describedWall(arguments);
  Judged judged{described ? daemonIfThere(options) : options.connect(), {}, {}};
  judged.around = surroundings(pointer(judged.daemon), arguments);
  if (described)
    judged.wall.plan = complete(*wanted, arguments, judged.around).plan();
  else
    judged.wall = recorded(readRecord(*judged.daemon), judged.around.card.size);
  return judged;
}

void check(const Options& options, const WallArguments& arguments) {
  auto [daemon, around, wall] = judged(options, arguments);
  if (!wall.plan) {
    if (arguments.strict && wall.instead.outcome == Outcome::Done) wall.instead.outcome = Outcome::Found;
    return options.print(wall.instead);
  }
  const auto findings = checkWall(*wall.plan, wallFacts(pointer(daemon), *wall.plan, around));
  const std::string count = findings.empty() ? "no warnings" : countText(findings.size(), "warning");
  const bool found = !findings.empty() && arguments.strict;
  options.print({{{"warnings", findingsJson(findings)}, {"around", around.text()}},
                 summary(*wall.plan) + '\n' + wrapped(around.text()) + findingLines(findings) + '\n' + count,
                 found ? Outcome::Found : Outcome::Done});
}

void show(const Options& options, const WallArguments& arguments) {
  OutputFile svg(arguments.svg);
  peer::Peer daemon = options.connect();
  const WallRecord record = readRecord(daemon);
  const Recorded there = recorded(record, cardSize(daemon).size);
  if (!there.plan) return printNoWall(options, there.instead, svg);
  const WallPlan& plan = *there.plan;
  const Seen seen = lookAtFpga(options, daemon, plan);
  svg.write(wallSvg(
      plan, {"Record: " + record.statusText() + "; FPGA: " + seen.text.substr(0, seen.text.find('\n'))}));
  Json fields = planJson(plan);
  fields["record"] = record.statusText();
  fields["fpga"] = seenJson(seen);
  fields["in_force"] = seen.outcome == Outcome::Verified;
  options.print(
      {fields,
       wallText(plan) + "\n\nrecord   " + record.statusText() + '\n' + wrapped("FPGA     " + seen.text, 9),
       seen.outcome});
}

// What a submission came to, looked at until it is there or the time is over.
struct Verdict {
  WallPlan plan;
  Comparison comparison;
  Seen saved;
};

Verdict verify(const Options& options, peer::Peer& daemon, const WantedWall& wanted,
               CalculationWitness& witness) {
  Verdict verdict{wanted.plan(), {}, {}};
  verdict.comparison = lookUntil(options.patience(), [&]() -> Comparison {
    if (witness.works() && !witness.hasSeen())
      return {Outcome::Mismatch, "mismatch: no calculation since the submission"};
    verdict.plan = wanted.plan(cardSize(daemon).size);  // the daemon measures it on its way
    const Seen seen = lookAtFpga(options, daemon, verdict.plan);
    if (seen.outcome == Outcome::Unknown) return {Outcome::Unknown, seen.text};
    if (seen.outcome == Outcome::Differs)
      return {Outcome::Mismatch, "mismatch" + seen.text.substr(seen.text.find(':'))};
    if (!witness.works())
      return {Outcome::Unknown, "unknown: this calculation cannot be told from an earlier one"};
    verdict.saved = lookAtFlash(options, verdict.plan);
    if (verdict.saved.outcome == Outcome::Differs)
      return {Outcome::Mismatch, "mismatch: saved copy " + verdict.saved.text};
    return {Outcome::Verified, "verified " + seen.text};
  });
  return verdict;
}

// Sends a record, waits if that is wanted, and says what came of it. The one that was there is kept for undo.
void apply(const Options& options, peer::Peer& daemon, const WantedWall& wanted, const WallRecord& before,
           const WallArguments& arguments, const std::vector<Finding>& findings, OutputFile& svg) {
  WallRecord after = before;
  wanted.putInto(after);
  // Sent once more it is no other wall, and the one before it stays kept.
  const bool same = before.isAdvanced() == wanted.isAdvanced() && after.bytes() == before.bytes();
  const std::string notKept = same ? "" : keepWall(options, before);
  std::optional<CalculationWitness> witness;
  if (arguments.wait) witness.emplace(daemon, wanted.plan());
  (wanted.isAdvanced() ? submitAdvanced : submitSmart)(daemon, after);
  Verdict verdict{wanted.plan(), {Outcome::Accepted, "accepted"}, {}};
  if (witness) verdict = verify(options, daemon, wanted, *witness);
  const bool verified = verdict.comparison.outcome == Outcome::Verified;
  const std::string text = verdict.comparison.text.substr(0, verdict.comparison.text.find('\n'));
  svg.write(wallSvg(verdict.plan, notesOf(text, findings)));
  Json fields = planJson(verdict.plan);
  fields["warnings"] = findingsJson(findings);
  fields["text"] = verdict.comparison.text;
  if (witness) fields["verified"] = verified;
  if (verified) fields["saved"] = seenJson(verdict.saved);
  options.print({fields,
                 summary(verdict.plan) + findingLines(findings) + '\n' + wrapped(verdict.comparison.text, 9) +
                     (verified ? '\n' + wrapped("saved    " + verdict.saved.text, 9) : "") +
                     (notKept.empty() ? "" : '\n' + wrapped("undo     not possible: " + notKept, 9)),
                 verdict.comparison.outcome});
}

void sendUnmapped(const Options& options, peer::Peer& daemon, const WantedWall& wanted,
                  const std::string& problem, const WallArguments& arguments) {
  const bool plain =
      !arguments.wait && arguments.svg.empty() && !arguments.plan;  // nothing is calculated here
  if (!(arguments.force && plain))
    throw Error(Failure::Usage, problem + (plain ? " (--force sends it all the same)" : ""));
  WallRecord record = readRecord(daemon);
  wanted.putInto(record);
  (wanted.isAdvanced() ? submitAdvanced : submitSmart)(daemon, record);
  Json fields = wanted.smart ? screenJson(*wanted.smart) : Json::object();
  fields["problem"] = problem;
  options.print({fields, wrapped("accepted, although " + problem), Outcome::Accepted});
}

void set(const Options& options, const WallArguments& arguments) {
  WantedWall wanted = describedWall(arguments);
  OutputFile svg(arguments.svg);
  peer::Peer daemon = options.connect();
  const Surroundings around = surroundings(&daemon, arguments);
  wanted = complete(wanted, arguments, around);
  if (const std::string problem = wanted.problem(); !problem.empty())
    return sendUnmapped(options, daemon, wanted, problem, arguments);
  const WallPlan plan = wanted.plan();
  const auto findings = checkWall(plan, wallFacts(&daemon, plan, around));
  const WallRecord before = readRecord(daemon);
  if (!arguments.plan) return apply(options, daemon, wanted, before, arguments, findings, svg);
  std::optional<WallPlan> there;
  try {
    there = before.plan(around.card.size);
  } catch (const Error&) {
    // What is there is no wall that is mapped: everything changes.
  }
  const auto changes = changesBetween(there, plan);
  svg.write(wallSvg(plan, notesOf("A plan, not what the FPGA holds", findings)));
  options.print({{{"changes", changesJson(changes)}, {"warnings", findingsJson(findings)}},
                 summary(plan) + findingLines(findings) + changeLines(changes) + '\n' +
                     (changes.empty() ? "nothing changes" : "nothing was sent")});
}

void undo(const Options& options, const WallArguments& arguments) {
  const std::optional<KeptWall> kept = keptWall(options);
  if (!kept) throw Error(Failure::Usage, "no wall is kept of this board: nothing to go back to");
  if (kept->record.isEmpty() && !kept->record.isAdvanced())
    throw Error(Failure::Usage,
                "there was no wall before the one of " + kept->time + ": nothing to go back to");
  OutputFile svg(arguments.svg);
  peer::Peer daemon = options.connect();
  const Surroundings around = surroundings(&daemon, arguments);
  WantedWall wanted{std::nullopt, std::nullopt, around.card.size};
  if (kept->record.isAdvanced())
    wanted.blocks = kept->record.advanced();
  else
    wanted.smart = kept->record.smart(around.card.size);
  const WallPlan plan = wanted.plan();
  apply(options, daemon, wanted, readRecord(daemon), arguments,
        checkWall(plan, wallFacts(&daemon, plan, around)), svg);
}

void wiring(const Options& options, const WallArguments& arguments) {
  WiringView view{.rear = arguments.rear, .port = std::nullopt};
  if (!arguments.port.empty()) view.port = number(arguments.port, ORVE_MCUC::kMappedPorts - 1);
  OutputFile svg(arguments.svg);
  const Recorded wall = judged(options, arguments).wall;
  if (!wall.plan) return printNoWall(options, wall.instead, svg);
  const WallPlan& plan = *wall.plan;
  if (view.port && !plan.ports()[*view.port].used)
    throw Error(Failure::Usage, "port " + arguments.port + " has no cards of its own in this wall");
  svg.write(wiringSvg(plan, view));
  options.print({planJson(plan), wiringText(plan, view)});
}

void addWait(Verb& verb, WallArguments& arguments) {
  verb.flag(
      "--wait", arguments.wait,
      "Wait until the daemon has calculated it, and compare what the FPGA holds with the calculation; for "
      "--timeout, at least 5 s");
}

using Act = void (*)(const Options&, const WallArguments&);

std::shared_ptr<WallArguments> addVerb(Verb& verb, const Options& options, Act act) {
  auto arguments = std::make_shared<WallArguments>();
  verb.run([&options, arguments, act] { act(options, *arguments); });
  return arguments;
}

// A verb that takes the description of a wall and draws it.
std::shared_ptr<WallArguments> addDrawing(Verb& verb, const Options& options, Act act, bool sizeRequired) {
  auto arguments = addVerb(verb, options, act);
  addScreen(verb, *arguments, sizeRequired);
  addSvg(verb, *arguments);
  return arguments;
}

void addSet(Verb& wall, const Options& options) {
  Verb& verb = wall.verb("set", "Configure the daemon for a wall");
  const auto arguments = addDrawing(verb, options, &set, true);
  addWait(verb, *arguments);
  verb.flag("--plan", arguments->plan, "Show what would change, and send nothing").excludes({"--wait"});
  verb.flag("--force", arguments->force, "Send what the daemon will not map, too");
  verb.example("wall set 4x6 --cards 12 --mode top-left-rows --wait");
  verb.example("wall set --blocks wall.txt --plan");
}

void addPreview(Verb& wall, const Options& options) {
  Verb& verb =
      wall.verb("preview", "What a wall would be; links and card size are the daemon's when there is one");
  const auto arguments = addDrawing(verb, options, &preview, true);
  verb.option("--card-size", "WxH", arguments->cardSize,
              "WIDTHxHEIGHT of a card in pixels, whatever the cards say");
  verb.example("wall preview 4x6 --cards 12 --mode bottom-right-columns --svg wall.svg");
}

void addCheck(Verb& wall, const Options& options) {
  Verb& verb =
      wall.verb("check", "Name what makes a wall dark: the wall that is there, or the one described");
  const auto arguments = addVerb(verb, options, &check);
  addScreen(verb, *arguments, false);
  verb.flag("--strict", arguments->strict, "End with status 1 when there is a warning");
  std::string rules = "Rules:";
  for (const WallRule& rule : kWallRules)
    rules += "\n  " + std::string(rule.id) + "  " + std::string(rule.title);
  verb.note(rules);
  verb.example("wall check 4x6 --cards 12 --strict");
}

}  // namespace

void addWall(Verb& root, const Options& options) {
  Verb& wall = root.verb("wall", "Configure a wall of receiving cards and look at it");
  addSet(wall, options);
  Verb& shown =
      wall.verb("show", "The wall that the daemon is configured for, compared with what the FPGA holds");
  addSvg(shown, *addVerb(shown, options, &show));
  addCheck(wall, options);
  addPreview(wall, options);

  Verb& back =
      wall.verb("undo", "Go back to the wall that was there before the last 'wall set' from this account");
  const auto undone = addVerb(back, options, &undo);
  addSvg(back, *undone);
  addWait(back, *undone);

  Verb& cables = wall.verb("wiring", "Cables to print: of the wall that is there, or of the one described");
  const auto arguments = addDrawing(cables, options, &wiring, false);
  cables.flag("--rear", arguments->rear, "As somebody behind the wall sees it");
  cables.option("--port", "N", arguments->port, "This port alone");
  cables.example("wall wiring --rear --svg wiring.svg");
}

}  // namespace parlctl
