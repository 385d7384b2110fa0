// reset factory: the whole reset, through the reboot to the first boot.
#include <unistd.h>

#include <iostream>
#include <memory>
#include <thread>

#include "cardfeatures.h"
#include "commands.h"
#include "maps/commands.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "wall_daemon.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
using Clock = std::chrono::steady_clock;
namespace reg = ORVE_MCUC::reg;

constexpr peer::milliseconds kPause{100};
constexpr const char* kWord = "RESET";
constexpr const char* kTypes[] = {
    "settings and configuration files go; the network stays",
    "settings and configuration files go; the network gets the factory address",
    "settings go; scenes, configuration files and the network stay",
};

struct ResetArguments {
  uint32_t type = 0;
  bool yes = false;
  std::string wait = "60";
};

void confirm(const ResetArguments& arguments) {
  if (arguments.yes) return;
  if (isatty(STDIN_FILENO) == 0)
    throw Error(Failure::Usage, "without a terminal to ask at, --yes-reset is needed; nothing was sent");
  std::cerr << "Reset to factory settings: " << kTypes[arguments.type] << ".\nType " << kWord
            << " to go on: " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != kWord) throw Error(Failure::Usage, "not confirmed; nothing was sent");
}

bool isAfter(Clock::time_point end) {
  return Clock::now() >= end;
}

// The device closes its connections when it goes down.
void waitForTheEnd(peer::Peer& daemon, Clock::time_point end) {
  try {
    while (!isAfter(end)) daemon.nextPush(kPause);
  } catch (const Error& error) {
    if (error.failure() == Failure::NoDaemon) return;
    throw;
  }
  throw Error(Failure::TimeOut, "the reset is accepted, but the device has not gone down in time");
}

// What the device shows once it answers again: nothing while it does not.
std::optional<WallRecord> lookAgain(const Options& options) {
  try {
    peer::Peer daemon = options.connect();
    return readRecord(daemon);
  } catch (const Error&) {
    return std::nullopt;
  }
}

// The first boot after a reset makes a screen of one card.
bool isFirstBoot(const WallRecord& record) {
  const SmartScreen screen = record.smart({});
  return screen.rows == 1 && screen.columns == 1;
}

Result foundAgain(const Options& options, Clock::time_point end) {
  std::optional<WallRecord> record;
  do {
    std::this_thread::sleep_for(kPause);
    record = lookAgain(options);
  } while (!isAfter(end) && !(record && isFirstBoot(*record)));
  if (!record) throw Error(Failure::TimeOut, "the device went down and has not come back in time");
  const SmartScreen screen = record->smart({});
  const bool good = isFirstBoot(*record);
  peer::Peer daemon = options.connect();
  const Feature& role = featureAt(ORVE_MCUC::fpga::kBackupMark);
  const std::string roleWord = valueText(role, readFeature(daemon, role));
  const std::string wall = std::to_string(screen.rows) + " x " + std::to_string(screen.columns);
  std::string text = good ? "verified" : "mismatch";
  text += ": the device is back after its reboot, with a wall of " + wall + " cards, as a " + roleWord;
  return {{{"rows", screen.rows}, {"columns", screen.columns}, {"role", roleWord}},
          text,
          good ? Outcome::Verified : Outcome::Mismatch};
}

void factory(const Options& options, const ResetArguments& arguments) {
  const auto patience = duration(arguments.wait);
  confirm(arguments);
  peer::Peer daemon = options.connect();
  daemon.write(reg::kCommand + ORVE_MCUC::command::kFactoryReset, {static_cast<uint8_t>(arguments.type)});
  const auto end = Clock::now() + patience;
  waitForTheEnd(daemon, end);
  Result result = foundAgain(options, end);
  result.fields["type"] = arguments.type;
  options.print(result);
}

}  // namespace

void addReset(Verb& root, const Options& options) {
  const auto arguments = std::make_shared<ResetArguments>();
  Verb& verb = root.verb("reset", "Back to the factory settings")
                   .verb("factory", "Reset the device, and wait until it is back after its reboot");
  std::string types;
  for (unsigned type = 0; type < std::size(kTypes); ++type) {
    types += types.empty() ? "" : ". ";
    types += std::to_string(type) + ": ";
    types += kTypes[type];
  }
  verb.option("--type", "N", arguments->type, 0, 2, types);
  verb.flag("--yes-reset", arguments->yes, "Do not ask for the word RESET; needed without a terminal");
  verb.option("--wait", "S", arguments->wait, "How long the device may take, in seconds");
  verb.example("reset factory --type 2");
  verb.run([&options, arguments] { factory(options, *arguments); });
}

}  // namespace parlctl
