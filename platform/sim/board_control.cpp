#include "board_control.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include "board_conf.h"
#include "board_files.h"
#include "board_journal.h"
#include "platform/board.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr char kMark[] = "PLBOARD1";
constexpr uint32_t kAlways = 0xFFFFFFFF;

struct ControlPage {
  char mark[8];
  std::atomic<int64_t> clockOffset;
  std::atomic<uint32_t> faults[16];
  std::atomic<uint32_t> sensorsKnown;  // so many readings have been given their start values
  unsigned char reserved[172];
  std::atomic<uint32_t> lux[32];
};
static_assert(std::atomic<int64_t>::is_always_lock_free, "the page is shared with other processes");
static_assert(offsetof(ControlPage, clockOffset) == 8 && offsetof(ControlPage, faults) == 16 &&
              offsetof(ControlPage, lux) == 256);
constexpr std::size_t kPageSize = 4096;

ControlPage* page = nullptr;

// A sensor that board.conf did not have before starts with the reading named there, unless somebody has set
// one already.
void introduceSensors() {
  const auto& sensors = conf().sensors;
  for (std::size_t i = page->sensorsKnown; i < sensors.size(); ++i) {
    if (page->lux[i] == 0) page->lux[i] = sensors[i].lux;
  }
  page->sensorsKnown = std::max<uint32_t>(page->sensorsKnown, static_cast<uint32_t>(sensors.size()));
}

}  // namespace

bool openControl() {
  const int file = openSized(path("hw/control.bin"), kPageSize);
  page = file >= 0 ? static_cast<ControlPage*>(mapShared(file, kPageSize)) : nullptr;
  if (file >= 0) close(file);
  if (page == nullptr) return false;
  std::memcpy(page->mark, kMark, sizeof page->mark);
  introduceSensors();
  return true;
}

void closeControl() {
  if (page != nullptr) munmap(page, kPageSize);
  page = nullptr;
}

bool takeFault(Fault kind) {
  if (page == nullptr) return false;
  auto& counter = page->faults[static_cast<std::size_t>(kind)];
  for (uint32_t left = counter.load(std::memory_order_relaxed); left != 0;) {
    if (left == kAlways || counter.compare_exchange_weak(left, left - 1)) return true;
  }
  return false;
}

uint32_t sensorLux(std::size_t index) {
  return page->lux[index].load(std::memory_order_relaxed);
}

}  // namespace simboard

using namespace simboard;

void board_clock(timespec* now) {
  clock_gettime(CLOCK_REALTIME, now);
  if (page == nullptr) return;
  // Another process may have written any offset: the sum wraps.
  const auto offset = static_cast<uint64_t>(page->clockOffset.load(std::memory_order_relaxed));
  now->tv_sec = static_cast<time_t>(static_cast<uint64_t>(now->tv_sec) + offset);
}

int board_clock_set(time_t seconds) {
  if (page == nullptr) return -1;
  timespec host{};
  clock_gettime(CLOCK_REALTIME, &host);
  page->clockOffset.store(static_cast<int64_t>(seconds) - host.tv_sec);
  if (journalsWrites()) JournalLine("clock-set").word(std::to_string(seconds));
  return 0;
}
