// The work queue beside one that is polled, both in a process of their own.
#include "measures.h"

namespace bench {

void measureWorkQueue(const Programs& programs, const Effort& effort, Table& table) {
  // What a probe prints: microseconds from adding to the handler's start, then the longest that an addition
  // behind 20 waiting items took, in handler times.
  const auto probe = [&](const std::string& queue) {
    const Board board;
    std::filesystem::create_directories(board.directory());
    return Child({(programs.helpers / "bench_queue").string(), queue, std::to_string(effort.queueItems)},
                 board.directory())
        .results();
  };
  std::vector<double> waits;
  std::vector<double> polledWaits;
  const auto start = [&probe](const std::string& queue, std::vector<double>& longest) {
    const auto numbers = probe(queue);
    longest.push_back(numbers.at(1));
    return numbers[0];
  };
  const auto results = inTurns(
      effort.rounds, {[&] { return start("parlend", waits); }, [&] { return start("polled", polledWaits); }});
  table.add(against("work queue: add to handler start", "us", results[0], "polled queue", results[1],
                    Goal::RatioAtMost, 0.1));
  table.add(
      alone("addition behind 20 items of 300 us", "handler times", median(waits), Goal::ValueAtMost, 3));
  table.add(alone("the same, polled queue", "handler times", median(polledWaits)));
}

}  // namespace bench
