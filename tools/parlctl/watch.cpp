// watch: the daemon's pushes, as they come.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <memory>

#include "commands.h"
#include "registernames.h"

namespace parlctl {

namespace {

using Clock = std::chrono::steady_clock;

volatile std::sig_atomic_t stopped = 0;

struct WatchArguments {
  std::string identity = "lsd";
  uint32_t count = 0;    // 0: no limit
  uint32_t seconds = 0;  // 0: no limit
};

void show(const Options& options, const peer::Frame& push) {
  const std::string time = timeText();
  const std::string name = registerName(push.address);
  const std::string data = peer::toHex(push.data);
  options.print({{{"time", time}, {"address", hexAddress(push.address)}, {"name", name}, {"data", data}},
                 time.substr(11, 12) + "  " + hexAddress(push.address) + "  " + data +
                     (name.empty() ? "" : "  " + name)});
}

void stopOnSignal(int /*signal*/) {
  stopped = 1;
}

void watch(const Options& options, const WatchArguments& arguments) {
  // Short waits: a signal between the test and the wait is seen a moment later.
  constexpr peer::milliseconds kWait{100};
  peer::Peer daemon = options.connect(*peer::serviceCode(arguments.identity));
  const auto end = arguments.seconds > 0 ? Clock::now() + std::chrono::seconds(arguments.seconds)
                                         : Clock::time_point::max();
  uint32_t seen = 0;
  while (stopped == 0 && Clock::now() < end) {
    const auto push = daemon.nextPush(kWait);
    if (!push) continue;
    show(options, *push);
    if (++seen == arguments.count) return;
  }
}

}  // namespace

void addWatch(Verb& root, const Options& options) {
  auto arguments = std::make_shared<WatchArguments>();
  Verb& verb = root.verb("watch", "Print the daemon's pushes until Ctrl-C");
  verb.option("--as", "PEER", arguments->identity, "The peer to be: each gets pushes of its own");
  verb.oneOf({"lsd", "vsp", "videod"});
  verb.option("--count", "N", arguments->count, 1, 0xFFFFFFFF, "End after so many pushes");
  verb.option("--for", "S", arguments->seconds, 1, 0xFFFFFFFF, "End after so many seconds");
  verb.example("watch --as vsp --count 1");
  verb.run([&options, arguments] {
    std::signal(SIGINT, stopOnSignal);
    std::signal(SIGTERM, stopOnSignal);
    watch(options, *arguments);
  });
}

}  // namespace parlctl
