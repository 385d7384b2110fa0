// The sending card's feature image: reads with and without the FPGA, and the road of a save.
#include "measures.h"
#include "peer.h"

namespace bench {
namespace {

constexpr uint32_t kFromImage = 0x02000020;
constexpr uint32_t kFromFpga = 0x020001E8;  // 16 bytes from here end behind the mirrored registers

void measureReads(const Programs& programs, const Effort& effort, Table& table) {
  const Daemon daemon(programs, "");
  Peer bus(daemon.socket(), kFirstService);
  Peer image(daemon.socket(), kFirstService + 1, kFromImage);
  Peer refreshed(daemon.socket(), kFirstService + 2, kFromFpga);
  const int count = effort.roundTrips;
  const auto results = inTurns(
      effort.rounds, {[&] { return image.medianTrip(count); }, [&] { return refreshed.medianTrip(count); },
                      [&] { return bus.medianTrip(count); }});
  constexpr const char* kBeside = "16-byte read of the FPGA bus";
  table.add(
      against("feature read from the image, 16 bytes", "us", results[0], kBeside, results[2], Goal::None, 0));
  table.add(
      against("feature read that refreshes, 16 bytes", "us", results[1], kBeside, results[2], Goal::None, 0));
}

void measureSave(const Programs& programs, const Effort& effort, Table& table) {
  std::vector<std::vector<double>> results(2);
  for (int round = 0; round < effort.rounds; ++round) {
    const Board board;
    std::filesystem::create_directories(board.directory());
    const auto numbers = Child({(programs.helpers / "bench_sender").string()}, board.directory()).results();
    for (std::size_t i = 0; i < results.size(); ++i) results[i].push_back(numbers.at(i));
  }
  table.add(against("feature write to its 512 saved bytes", "us", results[0], "the same bytes by pwrite",
                    results[1], Goal::None, 0));
}

}  // namespace

void measureSender(const Programs& programs, const Effort& effort, Table& table) {
  measureReads(programs, effort, table);
  measureSave(programs, effort, table);
}

}  // namespace bench
