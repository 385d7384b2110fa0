// watch: the daemon's pushes, as they come.
#include <algorithm>
#include <chrono>
#include <memory>

#include "commands.h"
#include "registernames.h"
#include "stop.h"

namespace parlctl {

namespace {

struct WatchArguments {
  std::string identity = "lsd";
  uint32_t count = 0;   // 0: no limit
  std::string seconds;  // empty: no limit
};

void show(const Options& options, const peer::Frame& push) {
  const std::string time = timeText();
  const std::string name = registerName(push.address);
  const std::string data = peer::toHex(push.data);
  Json fields{{"time", time}, {"address", hexAddress(push.address)}, {"name", name}, {"data", data}};
  std::string text =
      time.substr(11, 12) + "  " + hexAddress(push.address) + "  " + data + (name.empty() ? "" : "  " + name);
  if (const auto ports = linksIn(push.address, push.data); ports) {
    fields["ports"] = *ports;
    text += ports->empty() ? ": none" : ":";
    for (const unsigned port : *ports) text += ' ' + std::to_string(port);
  }
  options.print({fields, text});
}

void watch(const Options& options, const WatchArguments& arguments) {
  // Short waits: a signal between the test and the wait is seen a moment later.
  constexpr peer::milliseconds kWait{100};
  const Stop stop(arguments.seconds);
  peer::Peer daemon = options.connect(*peer::serviceCode(arguments.identity));
  uint32_t seen = 0;
  while (!stop.wanted()) {
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
  verb.option("--for", "S", arguments->seconds, "End after so many seconds");
  verb.example("watch --as vsp --count 1");
  verb.run([&options, arguments] { watch(options, *arguments); });
}

}  // namespace parlctl
