// How much waits to be handled, against a limit: counted up on the waiting thread, down on the receiving
// thread.
#ifndef PLATFORM_SIM_APIPC_LOAD_H
#define PLATFORM_SIM_APIPC_LOAD_H

#include <atomic>
#include <cstdint>

namespace simboard {

/** The room that a stopped reader waits for: for a whole batch of the longest packets. */
inline constexpr uint32_t kEnoughRoom = 17 << 16;

class Load {
 public:
  explicit Load(uint32_t limit) : limit_(limit), comfortable_(limit - kEnoughRoom) {}

  uint32_t room() const {
    const uint32_t bytes = bytes_.load();
    return bytes < limit_ ? limit_ - bytes : 0;
  }
  /** True when a stopped reader may go on: later than room() allows, so that it does not stop at every
   * message. */
  bool comfortable() const { return bytes_.load() <= comfortable_; }
  uint32_t bytes() const { return bytes_.load(); }

  void add(uint32_t bytes) { bytes_.fetch_add(bytes); }

  /** True when this removal is the one that made the load comfortable. */
  bool remove(uint32_t bytes) {
    const uint32_t before = bytes_.fetch_sub(bytes);
    return before > comfortable_ && before - bytes <= comfortable_;
  }

 private:
  const uint32_t limit_;
  const uint32_t comfortable_;
  std::atomic<uint32_t> bytes_{0};
};

}  // namespace simboard

#endif
