// A load of stored gamma tables into the FPGA, beside a bare copy of as many bytes.
#include <fstream>

#include "measures.h"

namespace bench {

void measurePicture(const Programs& programs, const Effort& effort, Table& table) {
  std::vector<std::vector<double>> results(2);
  for (int round = 0; round < effort.rounds; ++round) {
    const Board board;
    std::filesystem::create_directories(board.directory());
    std::ofstream(board.directory() / "board.conf") << "journal = off\n";
    const auto numbers = Child({(programs.helpers / "bench_picture").string()}, board.directory()).results();
    for (std::size_t i = 0; i < results.size(); ++i) results[i].push_back(numbers.at(i));
  }
  table.add(against("three stored gamma tables (24 KiB) into the FPGA", "us", results[0],
                    "the same bytes by memcpy into a mapping", results[1], Goal::None, 0));
}

}  // namespace bench
