// From the start of the process to the reply to the first request.
#include "measures.h"
#include "peer.h"

namespace bench {
namespace {

double firstReply(const std::vector<std::string>& command, const std::filesystem::path& board,
                  const std::filesystem::path& socket) {
  const double start = nowUs();
  const Child process(command, board);
  Peer(socket, kFirstService).roundTrip();
  return (nowUs() - start) / 1e3;
}

}  // namespace

void measureSpawn(const Programs& programs, const Effort& effort, Table& table) {
  const Board board;
  const TempDir home;
  const std::filesystem::path socket = home.path() / "socket";
  const auto daemon = [&] {
    return firstReply(daemonCommand(programs, ""), board.directory(), board.socket());
  };
  const auto server = [&] { return firstReply(yardstickCommand(programs, "hop", socket), {}, socket); };

  const double newBoard = daemon();
  const auto results = inTurns(effort.spawns, {daemon, server});
  table.add(against("spawn to first reply", "ms", results[0], "server with as many threads", results[1],
                    Goal::RatioAtMost, 1.5));
  table.add(alone("spawn to first reply, board made too", "ms", newBoard));
}

}  // namespace bench
