// What a daemon costs that has little to do: processor time and wake-ups while idle, memory after requests.
#include <unistd.h>

#include "measures.h"
#include "peer.h"

namespace bench {
namespace {

constexpr int kWarmRequests = 1000;

void addIdle(const Daemon& daemon, int seconds, Table& table) {
  const Activity before = activity(daemon.pid());
  const double start = nowUs();
  sleep(static_cast<unsigned>(seconds));
  const Activity after = activity(daemon.pid());
  const double elapsedUs = nowUs() - start;
  table.add(alone("idle: processor time", "%", (after.processorUs - before.processorUs) / elapsedUs * 100,
                  Goal::ValueAtMost, 0.2));
  table.add(alone("idle: wake-ups", "/s", (after.wakeUps - before.wakeUps) / elapsedUs * 1e6,
                  Goal::ValueAtMost, 10));
  table.add(alone("threads", "", after.threads));
}

void ask(Peer& peer, int count) {
  for (int i = 0; i < count; ++i) peer.roundTrip();
}

void addMemory(const Daemon& daemon, int growthRequests, Table& table) {
  Peer peer(daemon.socket(), kFirstService);
  ask(peer, kWarmRequests);
  const double resident = statusKiB(daemon.pid(), "VmRSS");
  const double anonymous = statusKiB(daemon.pid(), "RssAnon");
  ask(peer, growthRequests);
  const double growth = statusKiB(daemon.pid(), "VmRSS") - resident;
  table.add(alone("resident after 1000 requests", "KiB", resident, Goal::ValueAtMost, 6.4 * 1024));
  table.add(alone("of that not backed by files", "KiB", anonymous));
  table.add(alone("growth over " + std::to_string(growthRequests) + " requests", "KiB", growth,
                  Goal::ValueAtMost, 64));
}

}  // namespace

void measureFootprint(const Programs& programs, const Effort& effort, Table& table) {
  const Daemon daemon(programs, "");
  addIdle(daemon, effort.idleSeconds, table);
  addMemory(daemon, effort.growthRequests, table);
}

}  // namespace bench
