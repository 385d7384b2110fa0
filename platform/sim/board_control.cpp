#include "board_control.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>

#include "board_conf.h"
#include "board_files.h"
#include "board_power.h"

namespace simboard {
namespace {

constexpr char kMark[] = "PLBOARD1";
constexpr std::size_t kKinds = 16;
constexpr std::size_t kKindsWithAddress = 5;
constexpr uint32_t kSector = 512;

using Word = std::atomic<uint32_t>;
struct Range {
  Word first;
  Word last;
};

struct ControlPage {
  char mark[8];
  std::atomic<int64_t> clockOffset;
  Word failing[kKinds];
  Word sensorsKnown;  // so many readings have been given their start values
  Word passing[kKinds];
  Range ranges[kKindsWithAddress];
  Word cutAtWrite;
  Word cutDone;
  Word cutSectors;
  unsigned char reserved[56];
  Word lux[32];
};
static_assert(std::atomic<int64_t>::is_always_lock_free, "the page is shared with other processes");
static_assert(offsetof(ControlPage, clockOffset) == 8 && offsetof(ControlPage, failing) == 16 &&
              offsetof(ControlPage, passing) == 84 && offsetof(ControlPage, ranges) == 148 &&
              offsetof(ControlPage, cutAtWrite) == 188 && offsetof(ControlPage, lux) == 256);
constexpr std::size_t kPageSize = 4096;

std::atomic<ControlPage*> page{nullptr};

// A sensor that board.conf did not have before starts with the reading named there, unless somebody has set
// one already.
void introduceSensors(ControlPage& control) {
  const auto& sensors = conf().sensors;
  for (std::size_t i = control.sensorsKnown; i < sensors.size(); ++i) {
    if (control.lux[i] == 0) control.lux[i] = sensors[i].lux;
  }
  control.sensorsKnown = std::max<uint32_t>(control.sensorsKnown, static_cast<uint32_t>(sensors.size()));
}

// What the counter was before it was counted down; one that is zero, or the endless one, stays.
uint32_t countDown(Word& counter, uint32_t endless = 0) {
  uint32_t left = counter.load(std::memory_order_relaxed);
  while (left != 0 && left != endless && !counter.compare_exchange_weak(left, left - 1)) {
  }
  return left;
}

bool touches(const Range& range, uint32_t address, uint32_t length) {
  const uint32_t first = range.first.load(std::memory_order_relaxed);
  const uint32_t last = range.last.load(std::memory_order_relaxed);
  if (first == 0 && last == 0) return true;
  const uint32_t rest = length == 0 ? 0 : length - 1;
  const uint32_t end = address + std::min(rest, std::numeric_limits<uint32_t>::max() - address);
  return address <= last && first <= end;
}

}  // namespace

bool openControl() {
  const int file = openSized(path("hw/control.bin"), kPageSize);
  auto* const control = file >= 0 ? static_cast<ControlPage*>(mapShared(file, kPageSize, page)) : nullptr;
  if (file >= 0) close(file);
  if (control == nullptr) return false;
  std::memcpy(control->mark, kMark, sizeof control->mark);
  introduceSensors(*control);
  page = control;
  return true;
}

// The counter that arms the rest comes last.
void setFault(Fault kind, const FaultPlan& plan) {
  const auto index = static_cast<std::size_t>(kind);
  page.load()->failing[index] = 0;
  if (index < kKindsWithAddress) {
    page.load()->ranges[index].first = plan.first;
    page.load()->ranges[index].last = plan.last;
  }
  page.load()->passing[index] = plan.after;
  page.load()->failing[index] = plan.calls;
}

FaultPlan faultLeft(Fault kind) {
  const auto index = static_cast<std::size_t>(kind);
  FaultPlan left{page.load()->failing[index], page.load()->passing[index]};
  if (index < kKindsWithAddress) {
    left.first = page.load()->ranges[index].first;
    left.last = page.load()->ranges[index].last;
  }
  return left;
}

bool takeFault(Fault kind) {
  if (!hasPower()) return true;
  const auto index = static_cast<std::size_t>(kind);
  return countDown(page.load()->passing[index]) == 0 &&
         countDown(page.load()->failing[index], kEveryCall) != 0;
}

bool takeFault(Fault kind, uint32_t address, uint32_t length) {
  if (!hasPower()) return true;
  return touches(page.load()->ranges[static_cast<std::size_t>(kind)], address, length) && takeFault(kind);
}

void setPowerCut(const PowerCut& cut) {
  page.load()->cutDone = cut.done;
  page.load()->cutSectors = cut.sectors;
  page.load()->cutAtWrite = cut.atWrite;
}

uint32_t writesBeforePowerCut() {
  return page.load()->cutAtWrite;
}

std::optional<uint32_t> takePowerCut(uint32_t length) {
  if (countDown(page.load()->cutAtWrite) != 1) return std::nullopt;
  const uint32_t done = page.load()->cutDone;
  if (done == PowerCut::All) return length;
  const uint64_t bytes = done == PowerCut::Sectors ? uint64_t{page.load()->cutSectors} * kSector : 0;
  return static_cast<uint32_t>(std::min<uint64_t>(bytes, length));
}

int64_t clockOffset() {
  const ControlPage* const control = page;
  return control != nullptr ? control->clockOffset.load(std::memory_order_relaxed) : 0;
}

bool setClockOffset(int64_t seconds) {
  ControlPage* const control = page;
  if (control != nullptr) control->clockOffset = seconds;
  return control != nullptr;
}

uint32_t sensorLux(std::size_t index) {
  return page.load()->lux[index].load(std::memory_order_relaxed);
}

void setSensorLux(std::size_t index, uint32_t lux) {
  page.load()->lux[index] = lux;
}

}  // namespace simboard
