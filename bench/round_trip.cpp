// One client, one 16-byte read at a time.
#include <memory>

#include "measures.h"
#include "modbus_peer.h"
#include "peer.h"

namespace bench {
namespace {

constexpr const char* kUnit = "us";

// A libmodbus server with one client, or nothing.
struct Modbus {
  explicit Modbus(const Programs& programs)
      : port(freePort()),
        server({(programs.helpers / "bench_modbus_server").string(), std::to_string(port)}) {}
  int port;
  Child server;
  ModbusPeer peer{port};
};

}  // namespace

void measureRoundTrip(const Programs& programs, const Effort& effort, Table& table) {
  const Daemon plain(programs, "");
  const Daemon disabled(programs, "-disable");
  const Yardstick bare(programs, "bare");
  const Yardstick hop(programs, "hop");
  Peer plainPeer(plain.socket(), kFirstService);
  Peer disabledPeer(disabled.socket(), kFirstService);
  Peer barePeer(bare.socket(), kFirstService);
  Peer hopPeer(hop.socket(), kFirstService);
  const auto modbus = kHaveModbus ? std::make_unique<Modbus>(programs) : nullptr;

  const int count = effort.roundTrips;
  std::vector<Contestant> contestants{
      [&] { return plainPeer.medianTrip(count); }, [&] { return disabledPeer.medianTrip(count); },
      [&] { return hopPeer.medianTrip(count); }, [&] { return barePeer.medianTrip(count); }};
  if (modbus) contestants.push_back([&] { return modbus->peer.medianTrip(count); });
  const auto results = inTurns(effort.rounds, contestants);

  const std::string name = "round trip p50, 16-byte read";
  const auto& daemon = results[0];
  table.add(against(name, kUnit, daemon, "packets with one futex hop", results[2], Goal::RatioAtMost, 1.15));
  table.add(against(name, kUnit, daemon, "bare packets", results[3], Goal::RatioAtMost, 1.75));
  table.add(modbus ? against(name, kUnit, daemon, "libmodbus", results[4], Goal::RatioAtMost, 0.85)
                   : notInstalled(name, kUnit, daemon, "libmodbus"));
  table.add(against(name + " (one futex hop)", kUnit, results[2], "bare packets", results[3], Goal::None, 0));
  table.add(against(name, kUnit, daemon, "daemon with -disable", results[1], Goal::RatioAtMost, 1.02));
}

}  // namespace bench
