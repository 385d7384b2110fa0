// How far a factory reset has come. Owner: the flag and status thread, which runs the reset; a request comes
// from the thread that carries it out. No lock: the state announces the mode.
#pragma once

#include <atomic>
#include <cstdint>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

// A byte that announces other data: whoever sees a value also sees what was stored before it.
class AnnouncingByte {
 public:
  AnnouncingByte& operator=(uint8_t value) {
    value_.store(value, std::memory_order_release);
    return *this;
  }
  operator uint8_t() const { return value_.load(std::memory_order_acquire); }

 private:
  std::atomic<uint8_t> value_{0};
};

struct ResetState {
  static constexpr uint8_t kIdle = 0;
  static constexpr uint8_t kRebootPending = 1;
  static constexpr uint8_t kRunning = 2;
  static constexpr uint8_t kRequested = 3;

  RelaxedByte ResetMode;    // what is reset: 0, 1 or 2
  AnnouncingByte RebootRF;  // kIdle, ...

  void request(uint8_t mode) {
    ResetMode = mode;
    RebootRF = kRequested;
  }
};

}  // namespace ORVE_MCUC
