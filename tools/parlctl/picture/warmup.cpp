// warmup show, set: mode and time of the display's warm-up.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "maps/registermap.h"
#include "peer/peer.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace reg = ORVE_MCUC::reg;
using peer::Bytes;

// Mode and time are written to one register and stored where only the device-name window reads them; the
// register itself reads another place.
constexpr uint32_t kStored = reg::kRVConfigFile | reg::kDeviceNameFileBit;
constexpr std::size_t kStoredSize = 6;
constexpr uint8_t kValidTag[] = {0x39, 0xF6, 0xA5, 0x5A};

struct WarmUp {
  uint8_t mode = 0;
  uint8_t time = 0;
  bool valid = false;
};

WarmUp stored(peer::Peer& daemon) {
  const Bytes bytes = daemon.read(kStored, kStoredSize);
  return {bytes.at(0), bytes.at(1), std::equal(bytes.begin() + 2, bytes.end(), std::begin(kValidTag))};
}

std::string textOf(const WarmUp& warmUp) {
  if (!warmUp.valid) return "none is stored";
  return "mode " + std::to_string(warmUp.mode) + ", time " + std::to_string(warmUp.time);
}

Json fieldsOf(const WarmUp& warmUp) {
  return {{"stored", warmUp.valid},
          {"mode", warmUp.valid ? Json(warmUp.mode) : Json()},
          {"time", warmUp.valid ? Json(warmUp.time) : Json()}};
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const WarmUp warmUp = stored(daemon);
  options.print({fieldsOf(warmUp), textOf(warmUp)});
}

struct SetArguments {
  std::string mode, time;
};

void set(const Options& options, const SetArguments& arguments) {
  const WarmUp wanted{static_cast<uint8_t>(number(arguments.mode, 0xFF)),
                      static_cast<uint8_t>(number(arguments.time, 0xFF)), true};
  peer::Peer daemon = options.connect();
  daemon.write(reg::kWarmUp, {wanted.mode, wanted.time});
  const Comparison seen = lookUntil(options.patience(), [&]() -> Comparison {
    const WarmUp found = stored(daemon);
    if (found.valid && found.mode == wanted.mode && found.time == wanted.time)
      return {Outcome::Verified, "verified: the flash has it"};
    return {Outcome::Mismatch, "mismatch: the flash has another: " + textOf(found)};
  });
  options.print({fieldsOf(wanted), textOf(wanted) + '\n' + seen.text, seen.outcome});
}

}  // namespace

void addWarmup(Verb& root, const Options& options) {
  Verb& warmUp = root.verb("warmup", "Mode and time of the display's warm-up");
  warmUp.verb("show", "What is stored").run([&options] { show(options); });
  auto arguments = std::make_shared<SetArguments>();
  warmUp.verb("set", "Set and store them")
      .operand("MODE", arguments->mode, "0 to 255, as the device has them")
      .operand("TIME", arguments->time, "0 to 255, likewise")
      .example("warmup set 1 30")
      .run([&options, arguments] { set(options, *arguments); });
}

}  // namespace parlctl
