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
struct Meaning {
  std::mutex lock;
  std::function<void(Outage)> carryOut;
};
Meaning& meaning() {
  static auto& instance = *new Meaning;
  return instance;
}

std::function<void(Outage)> currentMeaning() {
  const std::lock_guard guard(meaning().lock);
  return meaning().carryOut;
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
  const auto carryOut = currentMeaning();
  if (why == Outage::Cut && !carryOut) _exit(kPowerCutStatus);
  closeJournal();
  apipc_close_all_peers();
  if (why == Outage::Reboot) markReboot();
  if (!carryOut) startProgramAgain();
  carryOut(why);
}

void onOutage(std::function<void(Outage)> then) {
  const std::lock_guard guard(meaning().lock);
  meaning().carryOut = std::move(then);
}

}  // namespace simboard
