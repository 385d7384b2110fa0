// clock get, clock set: the card's clock.
#include <memory>

#include "cardfeatures.h"
#include "commands.h"
#include "maps/fpgamap.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;

void get(const Options& options) {
  peer::Peer daemon = options.connect();
  const Feature& clock = featureAt(fpga::kClock);
  const std::string text = valueText(clock, readFeature(daemon, clock));
  options.print({{{"time", text}}, "clock    " + text});
}

void set(const Options& options, const std::string& text) {
  const Feature& clock = featureAt(fpga::kClock);
  const peer::Bytes bytes = valueBytes(clock, text);
  peer::Peer daemon = options.connect();
  const Result result = setFeature(options, daemon, clock, bytes);
  options.print({{{"time", valueText(clock, bytes)}}, result.text, result.outcome});
}

}  // namespace

void addClock(Verb& root, const Options& options) {
  Verb& noun = root.verb("clock", "The clock of the card, which runs in local time");
  noun.verb("get", "What it shows").run([&options] { get(options); });
  const auto time = std::make_shared<std::string>();
  noun.verb("set", "Set it, and see that it runs from there")
      .operand("TIME", *time, "now: this machine's local time; or a time as in 2024-02-29T23:59:58")
      .example("clock set now")
      .run([&options, time] { set(options, *time); });
}

}  // namespace parlctl
