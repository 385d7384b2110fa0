#include "readback.h"

#include <algorithm>
#include <thread>

#include "values.h"

namespace parlctl {

namespace {

using Clock = std::chrono::steady_clock;
constexpr peer::milliseconds kPause{50};

Comparison cannotBeSeen(const peer::Error& error) {
  if (error.failure() == peer::Failure::NoDaemon || error.failure() == peer::Failure::TimeOut) throw error;
  return {Outcome::Unknown, std::string("unknown: it cannot be read back: ") + error.what()};
}

}  // namespace

Comparison compareBytes(uint32_t address, std::span<const uint8_t> written, std::span<const uint8_t> found) {
  const auto [want, got] = std::ranges::mismatch(written, found);
  if (want == written.end())
    return {Outcome::Verified, "verified: " + countText(written.size(), "byte") + " read back as written"};
  const auto at = static_cast<uint32_t>(want - written.begin());
  const std::string place =
      "mismatch: " + hexAddress(address + at) + ": written " + peer::toHex(std::span(&*want, 1));
  return {Outcome::Mismatch, got == found.end() ? place + ", read back nothing"
                                                : place + ", read back " + peer::toHex(std::span(&*got, 1))};
}

Comparison lookUntil(peer::milliseconds patience, const std::function<Comparison()>& look) {
  const auto deadline = Clock::now() + patience;
  for (;;) {
    const bool last = Clock::now() >= deadline;
    try {
      const Comparison seen = look();
      if (last || seen.outcome == Outcome::Verified) return seen;
    } catch (const peer::Error& error) {
      return cannotBeSeen(error);
    }
    std::this_thread::sleep_for(kPause);
  }
}

Comparison readBack(peer::Peer& daemon, const peer::Frame& written, peer::milliseconds patience) {
  peer::Frame question = written;
  question.data.clear();
  return lookUntil(patience, [&] {
    const peer::Bytes found = daemon.read(written.address, written.data.size(), question);
    return compareBytes(written.address, written.data, found);
  });
}

}  // namespace parlctl
