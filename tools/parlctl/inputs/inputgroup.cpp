#include "inputgroup.h"

#include <cstdio>

#include "maps/inputsource.h"
#include "maps/registermap.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace input = ORVE_MCUC::input;
using peer::Error;
using peer::Failure;

constexpr uint32_t kSelection = ORVE_MCUC::reg::ofFeature(input::kSourceAt);

std::optional<uint8_t> selectedSource(peer::Peer& daemon) {
  const peer::Frame reply = daemon.exchange({.address = kSelection, .length = 1});
  if (reply.ack != 0 || reply.data.empty()) return std::nullopt;
  return reply.data[0];
}

}  // namespace

int parseGroup(const std::string& text) {
  const int groups = static_cast<int>(input::kSourceOfGroup.size());
  if (text.size() == 1) {
    for (int group = 0; group < groups; ++group) {
      const char letter = groupLetter(group);
      if (text[0] == letter || text[0] == letter + ('a' - 'A') || text[0] == '0' + group) return group;
    }
  }
  throw Error(Failure::Usage, text + " is no input: A, B and C can be selected");
}

char groupLetter(int group) {
  return static_cast<char>('A' + group);
}

std::optional<int> selectedGroup(peer::Peer& daemon) {
  const auto source = selectedSource(daemon);
  if (!source) return std::nullopt;
  return input::groupOf(*source).value_or(0);
}

GroupSelection::GroupSelection(const Options& options, peer::Peer& daemon, std::optional<int> wanted)
    : options_(options), daemon_(daemon), group_(selectedGroup(daemon)) {
  if (!wanted || wanted == group_) return;
  const auto source = selectedSource(daemon);
  if (!source) throw Error(Failure::Mismatch, "the daemon does not tell which input is selected");
  before_ = source;
  std::fprintf(stderr, "parlctl: input %c is selected for this, which the screen shows\n",
               groupLetter(*wanted));
  select(input::kSourceOfGroup[static_cast<std::size_t>(*wanted)]);
  group_ = wanted;
}

GroupSelection::~GroupSelection() {
  if (!before_) return;
  try {
    select(*before_);
  } catch (const Error& error) {
    std::fprintf(stderr, "parlctl: the input selected before is not selected again: %s\n", error.what());
  }
}

void GroupSelection::select(uint8_t source) {
  daemon_.write(kSelection, {source});
  const Comparison seen =
      readBack(daemon_, {.code = peer::kWrite, .address = kSelection, .length = 1, .data = {source}},
               options_.patience());
  if (seen.outcome != Outcome::Verified) throw Error(Failure::Mismatch, "selecting an input: " + seen.text);
}

}  // namespace parlctl
