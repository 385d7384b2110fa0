// cabfile list, put, get, play, compile, decompile: configuration files of the receiving cards.
#include <poll.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "cabfiletext.h"
#include "cabspace.h"
#include "calc/rvplayback.h"
#include "commands.h"
#include "inputfile.h"
#include "output.h"
#include "progress.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace rv = ORVE_MCUC::rv;
using ORVE_MCUC::RvEnd;
using ORVE_MCUC::RvPlan;
using peer::Bytes;
using peer::Error;
using peer::Failure;

constexpr std::size_t kLongTransfer = 64 * 1024;     // bytes
constexpr std::size_t kMostText = 64 * 1024 * 1024;  // a list of the largest file, and its comments
constexpr uint64_t kLongPlaybackMs = 60'000;
constexpr uint64_t kMostPlaybackMs = 600'000;
// A register of the control area that nobody is told of: a write to it has no effect, and is answered when
// the work before it is done.
constexpr uint32_t kIdle = rv::kControl + 2;

std::string baseName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

const char* faultText(RvEnd end) {
  return end == RvEnd::kTooLong ? "an item is longer than 4096 bytes"
                                : "an item does not lie within the file";
}

std::string planText(const RvPlan& plan) {
  return countText(plan.items, "item") + ", " + countText(plan.writes, "write") + ", at least " +
         durationText(plan.pausesMs);
}

Json planJson(const RvPlan& plan) {
  return {{"items", plan.items}, {"writes", plan.writes}, {"milliseconds", plan.pausesMs}};
}

void list(const Options& options) {
  peer::Peer daemon = options.connect();
  const auto places = readCabHeader(daemon);
  const std::string index = readCabIndex(daemon);
  Json files = Json::array();
  std::string text = places.empty() ? "no files" : "";
  for (const CabPlace& place : places) {
    const auto named = findInIndex(index, place.number);
    const auto bytes = readCabFile(daemon, place, named);
    Json file{{"number", place.number}, {"register", hexAddress(place.start)}, {"whole", bytes.has_value()}};
    if (named) file["name"] = named->name;
    text += (text.empty() ? "" : "\n") + std::to_string(place.number) + "  " + hexAddress(place.start) + "  ";
    if (bytes) {
      const RvPlan plan = ORVE_MCUC::planOf(*bytes);
      file["bytes"] = bytes->size();
      file.update(planJson(plan));
      text += countText(bytes->size(), "byte") + ", " + planText(plan);
    } else {
      text += "no whole file";
    }
    if (named) text += "  " + named->name;
    files.push_back(file);
  }
  options.print({{{"files", files}}, text});
}

// Bytes written beside what the copy in flash holds once the queued work is done.
Comparison compareWithCopy(const Options& options, peer::Peer& daemon, uint32_t start, const Bytes& written) {
  return lookUntil(options.patience(), [&] {
    return compareBytes(start, written, readCabBytes(daemon, start, written.size(), [](std::size_t) {}));
  });
}

std::vector<CabFile> filesToPut(const std::vector<std::string>& paths, bool force) {
  std::vector<CabFile> files;
  for (const std::string& path : paths) {
    files.push_back({baseName(path), fileBytes(path, rv::kMostFileBytes)});
    const RvPlan plan = ORVE_MCUC::planOf(files.back().bytes);
    if (plan.end != RvEnd::kDone && !force) {
      throw Error(Failure::Usage, path + ": " + faultText(plan.end) + "; --force stores it all the same");
    }
  }
  return files;
}

void put(const Options& options, const std::vector<std::string>& paths, bool force) {
  const auto files = filesToPut(paths, force);
  const auto places = placeCabFiles(files);
  const std::string names = cabIndex(files);
  const Bytes header = cabHeader(places);
  const Bytes index(names.begin(), names.end());
  std::size_t whole = 0;
  for (const CabFile& file : files) whole += file.bytes.size();

  peer::Peer daemon = options.connect();
  daemon.write(rv::kHeader, header);
  if (!index.empty()) daemon.write(rv::kIndex, index);
  {
    Progress progress("storing", whole, kLongTransfer);
    std::size_t before = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
      writeCabBytes(daemon, places[i].start, files[i].bytes,
                    [&](std::size_t done) { progress.at(before + done); });
      before += files[i].bytes.size();
    }
  }
  Comparison seen = compareWithCopy(options, daemon, rv::kHeader, header);
  for (std::size_t i = 0; i < files.size() && seen.outcome == Outcome::Verified; ++i) {
    seen = compareWithCopy(options, daemon, places[i].start, files[i].bytes);
  }
  const bool good = seen.outcome == Outcome::Verified;
  const std::string text = good ? "verified: the copy in flash of " + countText(files.size(), "file") + ", " +
                                      countText(whole, "byte") + ", is as written"
                                : seen.text;
  options.print({{{"files", files.size()}, {"bytes", whole}}, text, seen.outcome});
}

const CabPlace& placeOf(const std::vector<CabPlace>& places, uint32_t number) {
  const auto found = std::ranges::find(places, number, &CabPlace::number);
  if (found == places.end()) {
    throw Error(Failure::Usage, "no file " + std::to_string(number) + " is announced: see cabfile list");
  }
  return *found;
}

void get(const Options& options, uint32_t number, const std::string& path, bool asText) {
  OutputFile output(path);
  peer::Peer daemon = options.connect();
  const auto places = readCabHeader(daemon);
  const auto named = findInIndex(readCabIndex(daemon), number);
  const auto bytes = readCabFile(daemon, placeOf(places, number), named);
  if (!bytes) throw Error(Failure::Mismatch, "file " + std::to_string(number) + " is not whole");
  const std::string content = asText ? decompileCabFile(*bytes) : std::string(bytes->begin(), bytes->end());
  if (!output.wanted()) return writeOutput(content);
  output.write(content);
  Json fields = planJson(ORVE_MCUC::planOf(*bytes));
  fields["bytes"] = bytes->size();
  options.print({fields, "done: " + countText(bytes->size(), "byte") + " to " + path});
}

void warnOfLength(const RvPlan& plan) {
  if (plan.pausesMs > kLongPlaybackMs) {
    std::fprintf(
        stderr,
        "parlctl: the playback takes at least %s; meanwhile the daemon keeps waiting whoever writes what it "
        "queues\n",
        durationText(plan.pausesMs).c_str());
  }
  if (plan.pausesMs > kMostPlaybackMs) {
    std::fprintf(stderr, "parlctl: the daemon ends every playback after ten minutes\n");
  }
}

// What the daemon has in its directory is known from the copy in flash; without one nothing is told before.
std::optional<RvPlan> planOfStored(peer::Peer& daemon, uint32_t number) {
  const auto places = readCabHeader(daemon);
  const auto found = std::ranges::find(places, number, &CabPlace::number);
  if (found == places.end()) return std::nullopt;
  const auto bytes = readCabFile(daemon, *found, findInIndex(readCabIndex(daemon), number));
  return bytes ? std::optional(ORVE_MCUC::planOf(*bytes)) : std::nullopt;
}

void play(const Options& options, uint32_t number, bool wait) {
  peer::Peer daemon = options.connect();
  const auto plan = planOfStored(daemon, number);
  if (plan) warnOfLength(*plan);
  daemon.write(rv::kPlay + number, {1});
  Json fields{{"number", number}};
  if (plan) fields.update(planJson(*plan));
  if (!wait) {
    return options.print({fields, "accepted: file " + std::to_string(number), Outcome::Accepted});
  }
  const auto length = static_cast<std::size_t>(plan ? std::min(plan->pausesMs, kMostPlaybackMs) : 0);
  {
    Progress progress("playing", length, 2000);
    for (std::size_t at = 0; at < length; at += 100) {
      progress.at(at);
      ::poll(nullptr, 0, static_cast<int>(std::min<std::size_t>(length - at, 100)));
    }
  }
  daemon.write(kIdle, {0});
  options.print({fields, "done: the daemon has worked file " + std::to_string(number) +
                             " off; its log tells what failed"});
}

std::string textOfFile(const std::string& path) {
  const Bytes bytes = fileBytes(path, kMostText);
  return {bytes.begin(), bytes.end()};
}

void write(const Options& options, const std::string& content, const std::string& path, const RvPlan& plan) {
  OutputFile output(path);
  if (!output.wanted()) return writeOutput(content);
  output.write(content);
  options.print({planJson(plan), "done: " + planText(plan) + ", to " + path});
}

void compile(const Options& options, const std::string& path, const std::string& to) {
  const Bytes bytes = compileCabFile(textOfFile(path));
  write(options, std::string(bytes.begin(), bytes.end()), to, ORVE_MCUC::planOf(bytes));
}

void decompile(const Options& options, const std::string& path, const std::string& to) {
  const Bytes bytes = fileBytes(path, rv::kMostFileBytes);
  write(options, decompileCabFile(bytes), to, ORVE_MCUC::planOf(bytes));
}

struct Arguments {
  std::vector<std::string> paths;
  std::string number;
  std::string path;
  std::string output;
  bool force = false;
  bool asText = false;
  bool noWait = false;
};

using Shared = std::shared_ptr<Arguments>;

void addTransfers(Verb& noun, const Options& options, const Shared& given) {
  noun.verb("list", "Which files the daemon stores, and how long their playback takes")
      .run([&options] { list(options); })
      .example("cabfile list");
  noun.verb("put", "Store a set of files, in place of the set that is there")
      .operands("FILE", given->paths, "Up to 16 configuration files; the first gets number 0")
      .isFile()
      .flag("--force", given->force, "Store files whose items do not lie within them, too")
      .note("What was stored is read back from its copy in flash")
      .example("cabfile put left.rcfgx right.rcfgx")
      .run([&options, given] { put(options, given->paths, given->force); });
  noun.verb("get", "Fetch a file from its copy in flash")
      .operand("N", given->number, "Number of the file")
      .option("--output", "FILE", given->output, "Where it goes; otherwise to standard output")
      .isFile()
      .flag("--text", given->asText, "As text, as cabfile decompile writes it")
      .example("cabfile get 0 --text")
      .run([&options, given] {
        get(options, number(given->number, rv::kFileNumbers - 1), given->output, given->asText);
      });
}

void addWorkings(Verb& noun, const Options& options, const Shared& given) {
  noun.verb("play", "Play a stored file to all receiving cards")
      .operand("N", given->number, "Number of the file, 0 to 31")
      .flag("--no-wait", given->noWait, "Do not wait until it has been played")
      .note(
          "A playback of more than a minute is warned of: until its end the daemon answers nobody who writes "
          "what "
          "it queues")
      .example("cabfile play 0")
      .run([&options, given] { play(options, number(given->number, rv::kFileNumbers - 1), !given->noWait); });
  noun.verb("compile", "Make a configuration file of a list of register writes and pauses")
      .operand("TEXT", given->path, "Lines \"0x02000001 = 80 01\", \"+ 02 03\" (more bytes), \"pause MS\"")
      .isFile()
      .option("--output", "FILE", given->output, "Where it goes; otherwise to standard output")
      .isFile()
      .example("cabfile compile setup.txt --output setup.rcfgx")
      .run([&options, given] { compile(options, given->path, given->output); });
  noun.verb("decompile", "Make that list of a configuration file")
      .operand("FILE", given->path, "A configuration file")
      .isFile()
      .option("--output", "FILE", given->output, "Where it goes; otherwise to standard output")
      .isFile()
      .example("cabfile decompile setup.rcfgx")
      .run([&options, given] { decompile(options, given->path, given->output); });
}

}  // namespace

void addCabfile(Verb& root, const Options& options) {
  const auto given = std::make_shared<Arguments>();
  Verb& noun = root.verb("cabfile", "Store and play configuration files of the receiving cards");
  addTransfers(noun, options, given);
  addWorkings(noun, options, given);
}

}  // namespace parlctl
