// 16 clients at once, each a thread with one request under way.
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

#include "measures.h"
#include "modbus_peer.h"
#include "peer.h"

namespace bench {
namespace {

constexpr std::size_t kClients = 16;
constexpr const char* kUnit = "requests/s";

// Requests per second of all peers together, each of them asking count times.
template <class AnyPeer>
double rate(std::vector<std::unique_ptr<AnyPeer>>& peers, int count) {
  std::atomic<bool> failed{false};
  std::vector<std::jthread> threads;
  threads.reserve(peers.size());
  const double start = nowUs();
  for (auto& peer : peers) {
    threads.emplace_back([&failed, &peer, count] {
      try {
        for (int i = 0; i < count; ++i) peer->roundTrip();
      } catch (const std::exception&) {
        failed = true;
      }
    });
  }
  threads.clear();
  if (failed) throw std::runtime_error("a client had no reply");
  return static_cast<double>(peers.size()) * count / (nowUs() - start) * 1e6;
}

}  // namespace

void measureManyClients(const Programs& programs, const Effort& effort, Table& table) {
  const Daemon daemon(programs, "");
  std::vector<std::unique_ptr<Peer>> peers;
  for (uint32_t i = 0; i < kClients; ++i)
    peers.push_back(std::make_unique<Peer>(daemon.socket(), kFirstService + i));
  std::vector<Contestant> contestants{[&] { return rate(peers, effort.manyClientsTrips); }};

  std::unique_ptr<Child> server;
  std::vector<std::unique_ptr<ModbusPeer>> modbusPeers;
  if (kHaveModbus) {
    const int port = freePort();
    server = std::make_unique<Child>(
        std::vector{(programs.helpers / "bench_modbus_server").string(), std::to_string(port)});
    for (std::size_t i = 0; i < kClients; ++i) modbusPeers.push_back(std::make_unique<ModbusPeer>(port));
    contestants.push_back([&] { return rate(modbusPeers, effort.manyClientsTrips); });
  }
  const auto results = inTurns(effort.rounds, contestants);
  const std::string name = "16 clients, 16-byte reads";
  table.add(kHaveModbus ? against(name, kUnit, results[0], "libmodbus", results[1], Goal::RatioAtLeast, 1.7)
                        : notInstalled(name, kUnit, results[0], "libmodbus"));
}

}  // namespace bench
