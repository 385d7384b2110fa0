// One log line, written by a process of its own so that standard output can be chosen.
#include "measures.h"

namespace bench {
namespace {

constexpr const char* kUnit = "ns";

struct Lines {
  const Programs& programs;
  int count;
  std::string output;

  Contestant by(const std::string& writer) const {
    return [*this, writer] {
      const Board board;
      std::filesystem::create_directories(board.directory());
      const std::string echo = output.empty() ? board.output().string() : output;
      Child probe({(programs.helpers / "bench_trace").string(), writer, board.directory().string(),
                   std::to_string(count)},
                  board.directory(), echo);
      return probe.results().front();
    };
  }
};

void addRows(const std::string& name, const std::vector<std::vector<double>>& results, Goal goal,
             double limitStdio, double limitSpdlog, Table& table) {
  table.add(results.size() > 2 ? against(name, kUnit, results[0], "spdlog", results[2], goal, limitSpdlog)
                               : notInstalled(name, kUnit, results[0], "spdlog"));
  table.add(against(name, kUnit, results[0], "stdio writer", results[1], goal, limitStdio));
}

std::vector<Contestant> contestants(const Lines& lines, const std::string& spdlog) {
  std::vector<Contestant> all{lines.by("parlend"), lines.by("stdio")};
#ifdef BENCH_HAVE_SPDLOG
  all.push_back(lines.by(spdlog));
#else
  (void)spdlog;
#endif
  return all;
}

}  // namespace

void measureTraceLine(const Programs& programs, const Effort& effort, Table& table) {
  const Lines nowhere{programs, effort.traceLines, "/dev/null"};
  const Lines toFile{programs, effort.traceLines, ""};
  addRows("trace line, echo to /dev/null", inTurns(effort.rounds, contestants(nowhere, "spdlog")),
          Goal::RatioAtMost, 0.35, 1.0, table);
  // spdlog echoes too here; the stdio writer's echo goes through a buffer.
  addRows("trace line, echo to a file", inTurns(effort.rounds, contestants(toFile, "spdlog-echo")),
          Goal::None, 0, 0, table);
}

}  // namespace bench
