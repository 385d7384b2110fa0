#include "board_power.h"

#include <unistd.h>

#include <atomic>
#include <mutex>
#include <utility>

#include "apipc_service.h"
#include "board_dir.h"
#include "board_journal.h"

namespace simboard {
namespace {

constexpr int kPowerCutStatus = 75;

std::atomic<bool> power{false};
std::mutex meaningLock;
std::function<void(Outage)> meaningHere;

std::function<void(Outage)> meaning() {
  const std::lock_guard guard(meaningLock);
  return meaningHere;
}

}  // namespace

bool hasPower() {
  return power.load(std::memory_order_acquire);
}
void setPower(bool on) {
  power.store(on, std::memory_order_release);
}

void powerGoes(Outage why) {
  setPower(false);
  forgetPowered();
  const auto carryOut = meaning();
  if (why == Outage::Cut && !carryOut) _exit(kPowerCutStatus);
  closeJournal();
  apipc_close_all_peers();
  if (why == Outage::Reboot) markReboot();
  if (!carryOut) startProgramAgain();
  carryOut(why);
}

void onOutage(std::function<void(Outage)> then) {
  const std::lock_guard guard(meaningLock);
  meaningHere = std::move(then);
}

}  // namespace simboard
