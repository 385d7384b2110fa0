// The mapping of the largest wall, and the road of a submission without its waiting.
#include "measures.h"

namespace bench {

void measureMapping(const Programs& programs, const Effort& effort, Table& table) {
  std::vector<std::vector<double>> results(4);
  for (int round = 0; round < effort.rounds; ++round) {
    const Board board;
    std::filesystem::create_directories(board.directory());
    const auto numbers = Child({(programs.helpers / "bench_mapping").string()}, board.directory()).results();
    for (std::size_t i = 0; i < results.size(); ++i) results[i].push_back(numbers.at(i));
  }
  table.add(against("mapping of 10 ports x 1024 cards", "us", results[0], "each entry by itself", results[1],
                    Goal::None, 0));
  table.add(against("submission: write to saved tables", "us", results[2], "the same bytes by pwrite",
                    results[3], Goal::None, 0));
}

}  // namespace bench
