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

/* A message: this record, and directly behind it the contents. */
struct alignas(8) __apmsg_st {
  __apmsg_st* next = nullptr;
  std::shared_ptr<simboard::Load> share;
  uint32_t length = 0;

  unsigned char* contents() { return reinterpret_cast<unsigned char*>(this + 1); }
};

namespace simboard {

using Message = __apmsg_st;

/** Memory that a message of so many bytes takes, the allocator's own share included. */
constexpr uint32_t weightOf(std::size_t length) {
  return static_cast<uint32_t>(sizeof(Message) + length + 16);
}

/** A copy of the bytes as a message; null when there is no memory. */
Message* makeMessage(std::shared_ptr<Load> share, std::span<const unsigned char> bytes);
void freeMessage(Message* message);

/** Unbounded (the loads bound it), first in first out, without locks; one thread pushes, one pops and waits.
 */
class MessageQueue {
 public:
  MessageQueue() = default;
  MessageQueue(const MessageQueue&) = delete;
  MessageQueue& operator=(const MessageQueue&) = delete;
  ~MessageQueue();

  void push(Message* message);

  /** The oldest message; null: the queue is empty. */
  Message* pop();

  /** Sleeps until the queue holds a message or the time is over. May return early. */
  void wait(int timeoutMs);

 private:
  std::atomic<Message*> arrived_{nullptr};  // newest first
  std::atomic<uint32_t> sleeping_{0};  // the futex word: 1 while the popping thread sleeps or is about to
  Message* inOrder_ = nullptr;         // oldest first; the popping thread's own
};

}  // namespace simboard

#endif
