// bundle: everything that somebody elsewhere needs to see, in one file.
#include <ctime>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>

#include "commands.h"
#include "helptext.h"
#include "output.h"
#include "report.h"
#include "tarfile.h"
#include "tracelog.h"
#include "version.h"
#include "wall_daemon.h"
#include "wallpicture.h"

namespace parlctl {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLogLines = 5000;  // the last ones
constexpr std::size_t kJournalBytes = 0x400000;

// The end of a file, from the beginning of a line; empty when there is none.
std::string tailOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return {};
  const auto size = static_cast<std::size_t>(file.tellg());
  const std::size_t from = size > kJournalBytes ? size - kJournalBytes : 0;
  file.seekg(static_cast<std::streamoff>(from));
  std::string text{std::istreambuf_iterator<char>(file), {}};
  return from == 0 ? text : text.substr(text.find('\n') + 1);
}

std::string logTail(const Options& options) {
  const auto lines = TraceReader(options.board().directory() / "log").more();
  std::string text;
  for (std::size_t i = lines.size() > kLogLines ? lines.size() - kLogLines : 0; i < lines.size(); ++i)
    text += lines[i].text + '\n';
  return text;
}

std::string pretty(const char* verb, const Result& result) {
  return envelope(verb, result).dump(2) + '\n';
}

struct Part {
  const char* name;
  std::function<std::string()> make;
};

std::vector<Part> partsOf(const Options& options) {
  const fs::path board = options.board().directory();
  const auto plan = [&options](peer::Peer& daemon) { return readRecord(daemon).plan(cardSize(daemon).size); };
  return {{"versions.txt", [] { return std::string(kVersion) + '\n'; }},
          {"status.json",
           [&options] {
             peer::Peer daemon = options.connect();
             return pretty("status", statusResult(options, daemon));
           }},
          {"doctor.json", [&options] { return pretty("doctor", doctorResult(options)); }},
          {"wall.svg",
           [&options, plan] {
             peer::Peer daemon = options.connect();
             const WallPlan wall = plan(daemon);
             return wallSvg(wall, {lookAtFpga(options, daemon, wall).text});
           }},
          {"wiring.svg",
           [&options, plan] {
             peer::Peer daemon = options.connect();
             return wiringSvg(plan(daemon), {});
           }},
          {"log.txt", [&options] { return logTail(options); }},
          {"journal.log", [board] { return tailOf(board / "hw/journal.log"); }},
          {"board.conf", [board] { return tailOf(board / "board.conf"); }},
          {"sysconf.env", [board] { return tailOf(board / "etc/sysconf.env"); }}};
}

void bundle(const Options& options, const std::string& path) {
  OutputFile file(path);
  const int64_t now = std::time(nullptr);
  std::string archive;
  std::string missing;
  Json contents = Json::array();
  for (const Part& part : partsOf(options)) {
    std::string content;
    try {
      content = part.make();
    } catch (const peer::Error& error) {
      missing += std::string(part.name) + ": " + error.what() + '\n';
    }
    if (content.empty()) continue;
    archive += tarEntry(std::string("parlend-bundle/") + part.name, content, now);
    contents.push_back(part.name);
  }
  if (!missing.empty()) archive += tarEntry("parlend-bundle/missing.txt", missing, now);
  file.write(archive + tarEnd());
  options.print(
      {{{"file", path}, {"contents", contents}, {"missing", missing}},
       path + ": " + countText(contents.size(), "file") +
           (missing.empty() ? "" : '\n' + wrapped("missing:\n" + missing.substr(0, missing.size() - 1), 4)),
       missing.empty() ? Outcome::Done : Outcome::Found});
}

}  // namespace

void addBundle(Verb& root, const Options& options) {
  auto path = std::make_shared<std::string>();
  Verb& verb =
      root.verb("bundle", "Status, pictures, the end of the trace, journal and versions in one archive");
  verb.option("--output", "FILE", *path, "Where to, a .tar").letter('o').required().isFile();
  verb.note("Ends with status 1 when a part is missing; missing.txt in the archive says why.");
  verb.example("bundle -o parlend.tar");
  verb.run([&options, path] { bundle(options, *path); });
}

}  // namespace parlctl
