// Written EDIDs and configuration files, each from its work item to where it stays.
#include "measures.h"

namespace bench {

void measureInputs(const Programs& programs, const Effort& effort, Table& table) {
  std::vector<std::vector<double>> results(4);
  for (int round = 0; round < effort.rounds; ++round) {
    const Board board;
    std::filesystem::create_directories(board.directory());
    const auto numbers = Child({(programs.helpers / "bench_inputs").string()}, board.directory()).results();
    for (std::size_t i = 0; i < results.size(); ++i) results[i].push_back(numbers.at(i));
  }
  table.add(against("EDID written to EDID loaded", "us", results[0], "the same bytes by pwrite", results[1],
                    Goal::None, 0));
  table.add(against("configuration file of 1 MiB in 2 KiB chunks", "ms", results[2],
                    "the same bytes by pwrite and fdatasync", results[3], Goal::None, 0));
}

}  // namespace bench
