#include "servers.h"

#include <unistd.h>

#include "peer.h"

namespace bench {
namespace {

constexpr unsigned kStartUpSeconds = 3;

}  // namespace

std::vector<std::string> daemonCommand(const Programs& programs, const std::string& option) {
  std::vector<std::string> command{programs.daemon.string()};
  if (!option.empty()) command.push_back(option);
  return command;
}

std::vector<std::string> yardstickCommand(const Programs& programs, const std::string& kind,
                                          const std::filesystem::path& socket) {
  return {(programs.helpers / "bench_yardstick").string(), kind, socket.string(),
          std::to_string(Yardstick::kThreads)};
}

Daemon::Daemon(const Programs& programs, const std::string& option)
    : process_(daemonCommand(programs, option), board_.directory()) {
  Peer(socket(), kFirstService).roundTrip();
  sleep(kStartUpSeconds);
}

Yardstick::Yardstick(const Programs& programs, const std::string& kind)
    : process_(yardstickCommand(programs, kind, socket())) {
  Peer(socket(), kFirstService).roundTrip();
}

}  // namespace bench
