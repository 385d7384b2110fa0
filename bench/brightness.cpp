// A tick of the periodic poll with each brightness mode, beside the tick without.
#include <fstream>
#include <iterator>

#include "measures.h"

namespace bench {

void measureBrightness(const Programs& programs, const Effort& effort, Table& table) {
  constexpr const char* kModes[] = {"timetable",    "automatic mode", "fixed slot",
                                    "ambient slot", "black at once",  "hardware control"};
  std::vector<std::vector<double>> results(std::size(kModes) + 1);
  for (int round = 0; round < effort.rounds; ++round) {
    const Board board;
    std::filesystem::create_directories(board.directory());
    std::ofstream(board.directory() / "board.conf") << "sensor = 0 0 1 500\njournal = off\n";
    const auto numbers =
        Child({(programs.helpers / "bench_brightness").string()}, board.directory()).results();
    for (std::size_t i = 0; i < results.size(); ++i) results[i].push_back(numbers.at(i));
  }
  for (std::size_t i = 0; i < std::size(kModes); ++i)
    table.add(against(std::string("tick of the poll, ") + kModes[i], "us", results[i + 1], "without a mode",
                      results[0], Goal::None, 0));
}

}  // namespace bench
