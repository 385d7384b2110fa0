// Runs every measure and prints the table. Progress goes to standard error.
#include <array>
#include <cstdio>
#include <exception>
#include <string_view>

#include "measures.h"

namespace {

struct Measure {
  const char* name;
  void (*run)(const bench::Programs&, const bench::Effort&, bench::Table&);
};

constexpr std::array kMeasures{
    Measure{"round-trip", &bench::measureRoundTrip},  Measure{"many-clients", &bench::measureManyClients},
    Measure{"trace-line", &bench::measureTraceLine},  Measure{"work-queue", &bench::measureWorkQueue},
    Measure{"spawn", &bench::measureSpawn},           Measure{"footprint", &bench::measureFootprint},
    Measure{"mapping", &bench::measureMapping},       Measure{"checksum", &bench::measureChecksum},
    Measure{"flood", &bench::measureFlood},           Measure{"inputs", &bench::measureInputs},
    Measure{"brightness", &bench::measureBrightness}, Measure{"sender", &bench::measureSender},
    Measure{"picture", &bench::measurePicture}};

struct Options {
  bool json = false;
  bool quick = false;
  bool bad = false;
  std::string_view only;
};

Options parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--json")
      options.json = true;
    else if (word == "--quick")
      options.quick = true;
    else if (word == "--only" && i + 1 < argc)
      options.only = argv[++i];
    else
      options.bad = true;
  }
  return options;
}

int usage() {
  std::fputs("usage: parlend_bench [--quick] [--json] [--only MEASURE]\nmeasures:", stderr);
  for (const Measure& measure : kMeasures) std::fprintf(stderr, " %s", measure.name);
  std::fputs("\n", stderr);
  return 2;
}

// False: it could not be measured; the reason is a row of the table.
bool runOne(const Measure& measure, const bench::Programs& programs, const bench::Effort& effort,
            bench::Table& table) {
  std::fprintf(stderr, "measuring %s ...\n", measure.name);
  try {
    measure.run(programs, effort, table);
    return true;
  } catch (const std::exception& error) {
    bench::Row row = bench::alone(measure.name, "", 0);
    row.problem = error.what();
    table.add(row);
    return false;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = parse(argc, argv);
  if (options.bad) return usage();
  const auto here = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const bench::Programs programs{here / "parlend", here.parent_path() / "bench"};
  const bench::Effort& effort = options.quick ? bench::kQuick : bench::kFull;

  bench::Table table;
  bool complete = true;
  bool any = false;
  for (const Measure& measure : kMeasures) {
    if (!options.only.empty() && options.only != measure.name) continue;
    any = true;
    complete &= runOne(measure, programs, effort, table);
  }
  if (!any) return usage();
  std::fputs((options.json ? table.json() : table.text()).c_str(), stdout);
  return complete ? 0 : 1;
}
