// Messages and the queue in which they go from the waiting thread to the receiving thread.
#ifndef PLATFORM_SIM_APIPC_QUEUE_H
#define PLATFORM_SIM_APIPC_QUEUE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "apipc_load.h"
#include "platform/apipc.h"

namespace simboard {

struct Lane;

}  // namespace simboard

/* A message: this record, and directly behind it the contents. */
struct alignas(8) __apmsg_st {
  __apmsg_st* next = nullptr;
  std::shared_ptr<simboard::Lane> lane;
  uint32_t length = 0;

  unsigned char* contents() { return reinterpret_cast<unsigned char*>(this + 1); }
};

namespace simboard {

using Message = __apmsg_st;

/** A peer's messages that nobody has taken yet. The load is everybody's; the rest is the popping thread's
 * own. */
struct Lane : Load {
  using Load::Load;
  Message* first = nullptr;
  Message* last = nullptr;
  Lane* next = nullptr;  // whose turn is after this one's
};

/** Memory that a message of so many bytes takes, the allocator's own share included. */
constexpr uint32_t weightOf(std::size_t length) {
  return static_cast<uint32_t>(sizeof(Message) + length + 16);
}

/** A copy of the bytes as a message; null when there is no memory. */
Message* makeMessage(std::shared_ptr<Lane> lane, std::span<const unsigned char> bytes);
void freeMessage(Message* message);

/** Unbounded (the loads bound it), without locks; one thread pushes, one pops and waits. Lane after lane
 * gives one message, each its oldest. */
class MessageQueue {
 public:
  MessageQueue() = default;
  MessageQueue(const MessageQueue&) = delete;
  MessageQueue& operator=(const MessageQueue&) = delete;
  ~MessageQueue();

  void push(Message* message);

  /** The next message; null: the queue is empty. */
  Message* pop();

  /** Sleeps until the queue holds a message or the time is over. May return early. */
  void wait(int timeoutMs);

 private:
  void sortArrivals();
  void waitForTurn(Lane* lane);

  std::atomic<Message*> arrived_{nullptr};  // newest first
  std::atomic<uint32_t> sleeping_{0};  // the futex word: 1 while the popping thread sleeps or is about to
  // The popping thread's own: the lanes that hold messages, whose turn it is first.
  Lane* turn_ = nullptr;
  Lane* lastTurn_ = nullptr;
};

}  // namespace simboard

#endif
