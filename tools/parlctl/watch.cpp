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
  uint64_t count = 0;  // 0: no limit
  double seconds = 0;  // 0: no limit
};

std::string timeOfDay() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 16> text{};
  std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
  return text.data();
}

void show(const Options& options, const peer::Frame& push) {
  const std::string time = timeOfDay();
  const std::string name = registerName(push.address);
  const std::string data = peer::toHex(push.data);
  print(options, {{"time", time}, {"address", hexAddress(push.address)}, {"name", name}, {"data", data}},
        time + "  " + hexAddress(push.address) + "  " + data + (name.empty() ? "" : "  " + name));
}

void stopOnSignal(int /*signal*/) {
  stopped = 1;
}

void watch(const Options& options, const WatchArguments& arguments) {
  // Short waits: a signal between the test and the wait is seen a moment later.
  constexpr peer::milliseconds kWait{100};
  peer::Peer daemon = options.connect(*peer::serviceCode(arguments.identity));
  const auto end = arguments.seconds > 0
                       ? Clock::now() + peer::milliseconds(static_cast<int64_t>(arguments.seconds * 1000))
                       : Clock::time_point::max();
  uint64_t seen = 0;
  while (stopped == 0 && Clock::now() < end) {
    const auto push = daemon.nextPush(kWait);
    if (!push) continue;
    show(options, *push);
    if (++seen == arguments.count) return;
  }
}

}  // namespace

void addWatch(CLI::App& app, const Options& options) {
  auto arguments = std::make_shared<WatchArguments>();
  CLI::App* verb = app.add_subcommand("watch", "Print the daemon's pushes until Ctrl-C");
  verb->add_option("--as", arguments->identity, "The peer to be: each gets pushes of its own")
      ->check(CLI::IsMember({"lsd", "vsp", "videod"}))
      ->capture_default_str();
  verb->add_option("--count", arguments->count, "End after so many pushes")->check(CLI::PositiveNumber);
  verb->add_option("--for", arguments->seconds, "End after so many seconds")->check(CLI::Range(0.001, 1e9));
  verb->footer("Example: parlctl watch --as vsp --count 1");
  verb->callback([&options, arguments] {
    std::signal(SIGINT, stopOnSignal);
    std::signal(SIGTERM, stopOnSignal);
    watch(options, *arguments);
  });
}

}  // namespace parlctl
