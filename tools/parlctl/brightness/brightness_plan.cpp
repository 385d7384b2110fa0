// brightness plan check, write, read, preview.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "brightness_daemon.h"
#include "brightnesscheck.h"
#include "maps/registermap.h"
#include "output.h"
#include "readback.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

struct PlanArguments {
  std::string file;
  std::string date;
  std::string lux;
  std::string svg;
  std::string to;
  std::string bytes;
  bool week = false;
  bool wait = false;
  bool force = false;
};

Json findingsJson(const std::vector<PlanFinding>& findings) {
  Json list = Json::array();
  for (const PlanFinding& finding : findings)
    list.push_back({{"rule", finding.rule},
                    {"where", finding.where},
                    {"text", finding.text},
                    {"warning", finding.warning}});
  return list;
}

std::string findingsText(const std::vector<PlanFinding>& findings) {
  std::string text;
  for (const PlanFinding& finding : findings)
    text += (text.empty() ? "" : "\n") + finding.where + ": " + (finding.warning ? "warning: " : "") +
            finding.text + " [" + finding.rule + ']';
  return text;
}

Json planFields(const BrightnessPlan& plan, const Bytes& bytes) {
  return {{"mode", modeName(plan.mode)}, {"bytes", bytes.size()}};
}

void check(const Options& options, const PlanArguments& arguments) {
  const PlanFile file = planFromFile(arguments.file);
  const auto findings = checkFile(file.bytes);
  Json fields = planFields(file.plan, file.bytes);
  fields["findings"] = findingsJson(findings);
  const std::string head =
      std::string(modeName(file.plan.mode)) + " plan of " + countText(file.bytes.size(), "byte");
  options.print({fields, findings.empty() ? head + ": nothing found" : head + '\n' + findingsText(findings),
                 findings.empty() ? Outcome::Done : Outcome::Found});
}

// The mirror shows the control switch as it was written last.
Comparison comparePlan(peer::Peer& daemon, const Bytes& file) {
  Bytes found = storedFile(daemon);
  found.resize(std::max(found.size(), file.size()));
  return compareBytes(map::reg::kBrightness, file, found);
}

void write(const Options& options, const PlanArguments& arguments) {
  const PlanFile file = planFromFile(arguments.file);
  const auto findings = checkFile(file.bytes);
  const bool breaks =
      std::any_of(findings.begin(), findings.end(), [](const auto& each) { return !each.warning; });
  if (breaks && !arguments.force)
    throw Error(Failure::Usage,
                findingsText(findings) + "\nnothing was sent (--force sends the plan all the same)");
  peer::Peer daemon = options.connect();
  sendPlan(daemon, file.plan, file.bytes);
  Json fields = planFields(file.plan, file.bytes);
  fields["findings"] = findingsJson(findings);
  std::string text =
      std::string(modeName(file.plan.mode)) + " plan of " + countText(file.bytes.size(), "byte");
  if (!findings.empty()) text += '\n' + findingsText(findings);
  if (!record::isMixedFile(file.plan.mode))
    text +=
        "\nit holds until the device is switched off: the daemon stores tables of this mode with its next "
        "save";
  if (!arguments.wait) {
    options.print({fields, text + "\naccepted", Outcome::Accepted});
    return;
  }
  const Comparison seen = lookUntil(options.patience(), [&] { return comparePlan(daemon, file.bytes); });
  options.print({fields, text + '\n' + seen.text, seen.outcome});
}

void read(const Options& options, const PlanArguments& arguments) {
  OutputFile to(arguments.to);
  OutputFile bytes(arguments.bytes);
  peer::Peer daemon = options.connect();
  const Bytes file = storedFile(daemon);
  const BrightnessPlan plan = decompile(file);
  const std::string text = planText(plan);
  to.write(text);
  bytes.write({reinterpret_cast<const char*>(file.data()), file.size()});
  Json fields = planFields(plan, file);
  const bool off = std::string_view(modeName(plan.mode)) == "off";
  fields["plan"] = off ? Json() : Json::parse(text, nullptr, true, true);
  options.print({fields, off ? "off: the daemon has no brightness plan" : text.substr(0, text.size() - 1)});
}

int64_t dayFrom(const std::string& text, const Options& options) {
  if (text.empty()) {
    const int64_t now = boardTime(options);
    return now - now % 86400;
  }
  int year = 0;
  int month = 0;
  int day = 0;
  char rest = 0;
  const bool numbers = std::sscanf(text.c_str(), "%4d-%2d-%2d%c", &year, &month, &day, &rest) == 3;
  const map::LocalMoment asked{.year = year - 2000, .month = month, .day = day};
  if (!numbers || year < 2001 || year > 2255 || month < 1 || month > 12 || day < 1)
    throw Error(Failure::Usage, '"' + text + "\" is no date such as 2024-06-01");
  const int64_t seconds = map::secondsOf(asked);
  if (map::momentOf(seconds).day != day) throw Error(Failure::Usage, "there is no " + text);
  return seconds;
}

Json pictureJson(const BrightnessPicture& picture) {
  static constexpr const char* kKinds[] = {"none", "fixed", "ambient"};
  Json spans = Json::array();
  for (const SlotSpan& span : picture.spans())
    spans.push_back({{"from_s", span.from},
                     {"to_s", span.to},
                     {"kind", kKinds[static_cast<std::size_t>(span.kind)]},
                     {"slot", span.slot < 0 ? Json() : Json(span.slot + 1)}});
  Json sent = Json::array();
  for (const SentStep& step : picture.steps())
    sent.push_back({{"at_s", step.at}, {"ports", Json(step.ports)}, {"reason", reasonName(step.reason)}});
  return {{"spans", std::move(spans)}, {"sent", std::move(sent)}};
}

void preview(const Options& options, const PlanArguments& arguments) {
  OutputFile svg(arguments.svg);
  const PlanFile file = planFromFile(arguments.file);
  const LightOfDay light = arguments.lux.empty() ? LightOfDay() : lightFrom(arguments.lux);
  const BrightnessPicture picture(file.plan, dayFrom(arguments.date, options), arguments.week ? 7 : 1, light);
  if (svg.wanted()) svg.write(picture.svg());
  Json fields = planFields(file.plan, file.bytes);
  fields.update(pictureJson(picture));
  options.print({fields, picture.text()});
}

void addPreview(Verb& plan, const Options& options) {
  auto arguments = std::make_shared<PlanArguments>();
  Verb& verb = plan.verb("preview", "What a plan does over a day or a week, without a daemon");
  verb.operand("FILE", arguments->file, "The plan, as text or as the bytes of a configuration file").isFile();
  verb.option("--date", "DATE", arguments->date, "The day, as 2024-06-01; the board's today without it");
  verb.flag("--week", arguments->week, "Seven days from that day on");
  verb.option("--lux", "LIGHT", arguments->lux,
              "The light: lux, or a file of lines \"HH:MM LUX\"; without it slots that follow the light are "
              "shown as "
              "what their map reaches")
      .isFile();
  verb.option("--svg", "FILE", arguments->svg, "Draw it into this file, too").isFile();
  verb.note("The daemon's own scheduler runs under a virtual clock; the plan has run for a day before.");
  verb.example("brightness plan preview plan.json --date 2024-06-03 --svg day.svg");
  verb.run([&options, arguments] { preview(options, *arguments); });
}

}  // namespace

void addPlanVerbs(Verb& brightness, const Options& options) {
  Verb& plan = brightness.verb("plan", "Brightness plans: check, send, read, look at");
  auto arguments = std::make_shared<PlanArguments>();
  Verb* verb = &plan.verb("check", "Name every rule that a plan breaks");
  verb->operand("FILE", arguments->file, "The plan, as text or as the bytes of a configuration file")
      .isFile();
  verb->example("brightness plan check plan.json");
  verb->run([&options, arguments] { check(options, *arguments); });

  verb = &plan.verb("write", "Give the daemon a plan, then the control switch");
  verb->operand("FILE", arguments->file, "The plan, as text or as the bytes of a configuration file")
      .isFile();
  verb->flag("--wait", arguments->wait, "Read it back until it is there; waits for --timeout, at least 5 s");
  verb->flag("--force", arguments->force, "Send a plan that breaks rules, too");
  verb->example("brightness plan write plan.json --wait");
  verb->run([&options, arguments] { write(options, *arguments); });

  verb = &plan.verb("read", "The daemon's plan as text");
  verb->option("--to", "FILE", arguments->to, "Write the text into this file, too").isFile();
  verb->option("--bytes", "FILE", arguments->bytes, "Write the configuration file into this file, too")
      .isFile();
  verb->run([&options, arguments] { read(options, *arguments); });
  addPreview(plan, options);
}

}  // namespace parlctl
