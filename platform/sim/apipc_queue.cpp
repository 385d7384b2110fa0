#include "apipc_queue.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace simboard {
namespace {

struct KernelTime {  // what SYS_futex takes, on every architecture
  long seconds;
  long nanoseconds;
};

void sleepWhileOne(std::atomic<uint32_t>& word, int timeoutMs) {
  const KernelTime timeout{timeoutMs / 1000, timeoutMs % 1000 * 1000000L};
  syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, 1, &timeout, nullptr, 0);
}

void wakeSleeper(std::atomic<uint32_t>& word) {
  syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t) &&
              std::atomic<uint32_t>::is_always_lock_free);

Message* reversed(Message* list) {
  Message* result = nullptr;
  while (list) {
    Message* const next = std::exchange(list->next, result);
    result = std::exchange(list, next);
  }
  return result;
}

}  // namespace

Message* makeMessage(std::shared_ptr<Lane> lane, std::span<const unsigned char> bytes) {
  void* const memory = std::malloc(sizeof(Message) + bytes.size());
  if (!memory) return nullptr;
  auto* const message = new (memory) Message{nullptr, std::move(lane), static_cast<uint32_t>(bytes.size())};
  std::memcpy(message->contents(), bytes.data(), bytes.size());
  return message;
}

void freeMessage(Message* message) {
  message->~Message();
  std::free(message);
}

MessageQueue::~MessageQueue() {
  while (Message* const message = pop()) freeMessage(message);
}

// Both sides write their own variable and then read the other's, all in one total order: either the pusher
// sees the sleeper, or the sleeper sees the message.
void MessageQueue::push(Message* message) {
  message->next = arrived_.load(std::memory_order_relaxed);
  while (!arrived_.compare_exchange_weak(message->next, message)) {
  }
  if (sleeping_.load() != 0 && sleeping_.exchange(0) != 0) wakeSleeper(sleeping_);
}

void MessageQueue::waitForTurn(Lane* lane) {
  lane->next = nullptr;
  (turn_ ? lastTurn_->next : turn_) = lane;
  lastTurn_ = lane;
}

void MessageQueue::sortArrivals() {
  if (!arrived_.load(std::memory_order_relaxed)) return;
  for (Message* message = reversed(arrived_.exchange(nullptr)); message;) {
    Message* const following = std::exchange(message->next, nullptr);
    Lane* const lane = message->lane.get();
    const bool waits = lane->first != nullptr;
    (waits ? lane->last->next : lane->first) = message;
    lane->last = message;
    if (!waits) waitForTurn(lane);
    message = following;
  }
}

// A message that has been taken may be the last to hold its lane.
Message* MessageQueue::pop() {
  sortArrivals();
  if (!turn_) return nullptr;
  Lane* const lane = std::exchange(turn_, turn_->next);
  Message* const message = std::exchange(lane->first, lane->first->next);
  if (lane->first) waitForTurn(lane);
  return message;
}

void MessageQueue::wait(int timeoutMs) {
  if (turn_ || timeoutMs <= 0) return;
  sleeping_.store(1);
  if (!arrived_.load()) sleepWhileOne(sleeping_, timeoutMs);
  sleeping_.store(0, std::memory_order_relaxed);
}

}  // namespace simboard
