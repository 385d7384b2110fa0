// Values and events that a thread can sleep on until another thread changes them.
#pragma once

#include <atomic>
#include <cstdint>

namespace ORVE_MCUC {

// A byte that one thread reacts to. The waiter takes a ticket, looks at the value and whatever else it goes
// by, and waits only if there was nothing to do: what is set after the ticket was taken ends the wait, even
// where the value is the same again.
class WaitableByte {
 public:
  WaitableByte& operator=(uint8_t value) {
    value_.store(value);
    wake();
    return *this;
  }
  operator uint8_t() const { return value_.load(); }

  uint32_t ticket() const { return changes_.load(); }
  void wait(uint32_t ticket) const { changes_.wait(ticket); }
  // Lets waiters look again.
  void wake() {
    changes_.fetch_add(1);
    changes_.notify_all();
  }

 private:
  std::atomic<uint8_t> value_{0};
  std::atomic<uint32_t> changes_{0};
};

}  // namespace ORVE_MCUC
