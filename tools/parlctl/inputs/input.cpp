// input list, input edid show, input edid set: video inputs and the EDIDs they present to their sources.
#include <algorithm>
#include <memory>
#include <span>

#include "commands.h"
#include "edidjudge.h"
#include "edidtext.h"
#include "inputfile.h"
#include "inputgroup.h"
#include "maps/inputsource.h"
#include "maps/registermap.h"
#include "output.h"
#include "readback.h"

namespace parlctl {

namespace {

using namespace ORVE_MCUC;
using peer::Bytes;
using peer::Error;
using peer::Failure;

// A read of one byte has the daemon look for boards anew, and gives none.
void detect(peer::Peer& daemon) {
  daemon.request({.address = reg::kEdid, .length = 1});
}

Bytes readEdid(peer::Peer& daemon) {
  return daemon.read(reg::kEdid, kEdidBytes);
}

// What the daemon gives of an input that is not there.
bool isAbsent(const Bytes& edid) {
  return std::ranges::all_of(edid, [](uint8_t byte) { return byte == 0; });
}

std::optional<int> wantedGroup(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(parseGroup(text));
}

std::string inputText(std::optional<int> group) {
  return group ? std::string("input ") + groupLetter(*group) : "the selected input";
}

Json letterOf(std::optional<int> group) {
  return group ? Json(std::string(1, groupLetter(*group))) : Json();
}

// One input of the list; without its EDID for one that is not selected.
struct Listed {
  Json fields;
  std::string text;
};
Listed listed(int group, bool selected, const Bytes* edid) {
  Listed row{{{"input", letterOf(group)}, {"selected", selected}}, std::string(1, groupLetter(group))};
  row.text += selected ? " *  " : "    ";
  if (edid == nullptr) {
    row.text += "not asked: --all selects one input after the other";
  } else if (isAbsent(*edid)) {
    row.fields["present"] = false;
    row.text += "no input, or its EDID cannot be read";
  } else {
    const DecodedEdid decoded = decodeEdid(*edid);
    row.fields["present"] = true;
    row.fields["edid"] = jsonOf(decoded);
    row.text += modeText(decoded.mode) + (decoded.name.empty() ? "" : "  " + decoded.name);
    if (!decoded.faults.empty()) row.text += "  (" + decoded.faults.front() + ")";
  }
  return row;
}

void list(const Options& options, bool all) {
  peer::Peer daemon = options.connect();
  detect(daemon);
  const int selected = selectedGroup(daemon).value_or(0);
  Json inputs = Json::array();
  std::string text;
  for (int group = 0; group < static_cast<int>(input::kSourceOfGroup.size()); ++group) {
    Bytes edid;
    const bool asked = all || group == selected;
    if (asked) {
      const GroupSelection selection(options, daemon, all ? std::optional(group) : std::nullopt);
      edid = readEdid(daemon);
    }
    Listed row = listed(group, group == selected, asked ? &edid : nullptr);
    inputs.push_back(std::move(row.fields));
    text += (text.empty() ? "" : "\n") + row.text;
  }
  options.print({{{"inputs", inputs}}, text});
}

struct ShowArguments {
  std::string group;
  std::string raw;
  bool full = false;
};

Outcome addOpinion(Result& result, const Bytes& edid, bool full) {
  const bool extended = edid[kEdidExtensionsAt] != 0;  // else what follows the base block belongs to nothing
  const auto opinion = edidOpinion(std::span(edid).first(extended ? edid.size() : kEdidBlock));
  result.fields["conformant"] = opinion ? Json(opinion->conformant) : Json();
  if (!opinion) return Outcome::Done;
  result.text +=
      std::string("\ndecoder ") + (opinion->conformant ? "conformant" : "not conformant") + " (edid-decode)";
  if (full || !opinion->conformant) result.text += "\n\n" + opinion->text;
  return opinion->conformant ? Outcome::Done : Outcome::Found;
}

void show(const Options& options, const ShowArguments& arguments) {
  OutputFile raw(arguments.raw);
  peer::Peer daemon = options.connect();
  detect(daemon);
  Bytes edid;
  std::optional<int> group;
  {
    const GroupSelection selection(options, daemon, wantedGroup(arguments.group));
    group = selection.group();
    edid = readEdid(daemon);
  }
  if (isAbsent(edid))
    throw Error(Failure::ShortReply, inputText(group) + " is not there, or its EDID cannot be read");
  if (raw.wanted()) raw.write({reinterpret_cast<const char*>(edid.data()), edid.size()});
  const DecodedEdid decoded = decodeEdid(edid);
  Result result{jsonOf(decoded), textOf(decoded)};
  result.fields["input"] = letterOf(group);
  result.fields["bytes"] = peer::toHex(edid);
  result.outcome = addOpinion(result, edid, arguments.full);
  if (!decoded.faults.empty()) result.outcome = Outcome::Found;
  options.print(result);
}

struct SetArguments {
  std::string group;
  std::string mode;
  std::string file;
};

Bytes edidOfFile(const std::string& path) {
  const Bytes edid = fileBytes(path, kEdidBytes);
  if (edid.size() != kEdidBlock && edid.size() != kEdidBytes) {
    throw Error(Failure::Usage, path + ": an EDID of 128 or 256 bytes is wanted");
  }
  const DecodedEdid decoded = decodeEdid(edid);
  if (!decoded.faults.empty()) throw Error(Failure::Usage, path + ": " + decoded.faults.front());
  return edid;
}

Bytes edidToSet(const SetArguments& arguments) {
  if (arguments.mode.empty() == arguments.file.empty()) {
    throw Error(Failure::Usage, "a mode, as in 1920x1080@60, or --file FILE says what is set");
  }
  if (!arguments.file.empty()) return edidOfFile(arguments.file);
  const EdidBytes edid = composeEdid(parseMode(arguments.mode));
  return {edid.begin(), edid.end()};
}

Comparison compareTiming(const ExpectedTiming& expected, const Bytes& edid) {
  const auto found = std::span(edid).subspan(kEdidTimingAt, kEdidDescriptor);
  if (std::ranges::equal(expected.descriptor, found)) return {Outcome::Verified, ""};
  return {Outcome::Mismatch, isAbsent(edid) ? "the input is not there, or its EDID cannot be read"
                                            : "it presents " + modeText(modeOfEdid(edid))};
}

void set(const Options& options, const SetArguments& arguments) {
  const Bytes edid = edidToSet(arguments);
  const auto expected = expectedTiming(edid);
  if (!expected)
    throw Error(Failure::Usage, modeText(modeOfEdid(edid)) + " is no mode that the daemon loads");
  peer::Peer daemon = options.connect();
  detect(daemon);
  const GroupSelection selection(options, daemon, parseGroup(arguments.group));
  daemon.write(reg::kEdid, edid);
  const Comparison seen =
      lookUntil(options.patience(), [&] { return compareTiming(*expected, readEdid(daemon)); });
  const DetailedTiming timing = parseDtd(expected->descriptor);
  const char* kind = expected->standard ? "standard" : "computed";
  const bool good = seen.outcome == Outcome::Verified;
  const std::string asks = inputText(selection.group()) + " asks for " + modeText(expected->mode) + ", a " +
                           kind + " timing of " + std::to_string(timing.hActive + timing.hBlank) + " x " +
                           std::to_string(timing.vActive + timing.vBlank);
  options.print({{{"input", letterOf(selection.group())},
                  {"width", expected->mode.width},
                  {"height", expected->mode.height},
                  {"hertz", expected->mode.frame / 100.0},
                  {"timing", kind},
                  {"clock", timing.pixelClock}},
                 good ? "verified: " + asks : "mismatch: " + inputText(selection.group()) + ": " + seen.text,
                 seen.outcome});
}

void addEdid(Verb& noun, const Options& options) {
  const auto shown = std::make_shared<ShowArguments>();
  const auto given = std::make_shared<SetArguments>();
  Verb& edid = noun.verb("edid", "Show and set what an input presents to its source");
  edid.verb("show", "Decode the EDID of an input")
      .optionalOperand("INPUT", shown->group, "A, B or C; otherwise the selected one")
      .option("--raw", "FILE", shown->raw, "The bytes as they are, too, into a file")
      .isFile()
      .flag("--full", shown->full, "With all that edid-decode says, where that program is installed")
      .example("input edid show A")
      .run([&options, shown] { show(options, *shown); });
  edid.verb("set", "Ask the source of an input for another mode")
      .operand("INPUT", given->group, "A, B or C")
      .optionalOperand("MODE", given->mode, "WIDTHxHEIGHT@HZ, as in 1920x1080@59.94")
      .option("--file", "FILE", given->file, "An EDID of 128 or 256 bytes, whose first timing is the mode")
      .isFile()
      .note(
          "The daemon makes an EDID of its own for the mode: by a standard timing, or else by a computed one")
      .note("An input that is not selected is selected meanwhile, which the screen shows")
      .example("input edid set A 1920x1080@60")
      .run([&options, given] { set(options, *given); });
}

}  // namespace

void addInput(Verb& root, const Options& options) {
  const auto all = std::make_shared<bool>(false);
  Verb& noun = root.verb("input", "Video inputs and their EDIDs");
  noun.verb("list", "Look for inputs anew, and what the selected one presents")
      .flag("--all", *all, "Of all: one after the other is selected, which the screen shows")
      .example("input list")
      .run([&options, all] { list(options, *all); });
  addEdid(noun, options);
}

}  // namespace parlctl
