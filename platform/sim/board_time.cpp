#include "board_time.h"

#include <atomic>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "apipc_service.h"
#include "board_control.h"
#include "board_journal.h"
#include "board_power.h"
#include "platform/board.h"

namespace simboard {
namespace {

constexpr int64_t kSecond = 1'000'000;

int64_t hostUs(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<int64_t>(now.tv_sec) * kSecond + now.tv_nsec / 1000;
}

struct TestTime {
  std::atomic<bool> used{false};
  std::atomic<int64_t> monotonicUs{0};
  std::atomic<int64_t> wallUs{0};
  std::atomic<int64_t> heldFromUs{0};
  std::mutex lock;  // of what follows, and of the waits for it
  std::condition_variable changed;
  std::multiset<int64_t> heldUntil;
};

// Never destroyed: at exit threads are still held.
TestTime& testTime() {
  static auto& instance = *new TestTime;
  return instance;
}

int64_t wallUs() {
  const auto& test = testTime();
  return test.used ? test.wallUs.load() : hostUs(CLOCK_REALTIME);
}

void hold(TestTime& test, int64_t length) {
  std::unique_lock guard(test.lock);
  const int64_t until = test.monotonicUs + length;
  test.heldUntil.insert(until);
  test.changed.notify_all();
  test.changed.wait(guard, [&] { return !test.used || test.monotonicUs >= until; });
}

}  // namespace

void useTestTime(microseconds heldFrom) {
  auto& test = testTime();
  test.monotonicUs = hostUs(CLOCK_MONOTONIC);
  test.wallUs = hostUs(CLOCK_REALTIME);
  test.heldFromUs = heldFrom.count();
  test.used = true;
}

void useRealTime() {
  auto& test = testTime();
  {
    const std::lock_guard guard(test.lock);
    test.used = false;
    test.heldUntil.clear();
  }
  test.changed.notify_all();
}

void moveTime(microseconds by) {
  auto& test = testTime();
  {
    const std::lock_guard guard(test.lock);
    test.monotonicUs += by.count();
    test.wallUs += by.count();
    test.heldUntil.erase(test.heldUntil.begin(), test.heldUntil.upper_bound(test.monotonicUs));
  }
  test.changed.notify_all();
  apipc_time_moved();
}

bool awaitHeldPauses(unsigned count, std::chrono::milliseconds patience) {
  auto& test = testTime();
  std::unique_lock guard(test.lock);
  return test.changed.wait_for(guard, patience, [&] { return test.heldUntil.size() >= count; });
}

}  // namespace simboard

using namespace simboard;

void board_pause(int64_t microseconds) {
  if (microseconds <= 0) return;
  auto& test = testTime();
  if (!test.used) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
  } else if (microseconds < test.heldFromUs) {
    moveTime(std::chrono::microseconds(microseconds));
  } else {
    hold(test, microseconds);
  }
}

int64_t board_monotonic_us(void) {
  const auto& test = testTime();
  return test.used ? test.monotonicUs.load() : hostUs(CLOCK_MONOTONIC);
}

void board_clock(timespec* now) {
  if (testTime().used) {
    const int64_t us = wallUs();
    now->tv_sec = static_cast<time_t>(us / kSecond);
    now->tv_nsec = static_cast<long>(us % kSecond * 1000);
  } else {
    clock_gettime(CLOCK_REALTIME, now);
  }
  // Another process may have written any offset: the sum wraps.
  const auto offset = static_cast<uint64_t>(clockOffset());
  now->tv_sec = static_cast<time_t>(static_cast<uint64_t>(now->tv_sec) + offset);
}

int board_clock_set(time_t seconds) {
  if (!hasPower() || !setClockOffset(static_cast<int64_t>(seconds) - wallUs() / kSecond)) return -1;
  if (journalsWrites()) JournalLine("clock-set").word(std::to_string(seconds));
  return 0;
}
