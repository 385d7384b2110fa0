// A thread that sleeps in epoll and receives, a ring, and a thread that sleeps on a futex and replies: the
// five system calls that a daemon with two threads on the road cannot do without.
#include <linux/futex.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "yardstick.h"

namespace bench {
namespace {

constexpr std::size_t kBatch = 16;
constexpr uint32_t kRingSize = 256;  // more than peers have requests under way

struct Job {
  int peer = -1;
  Request request{};
};

class Ring {
 public:
  void push(const Job& job) {
    const uint32_t head = head_.load(std::memory_order_relaxed);
    jobs_[head % kRingSize] = job;
    head_.store(head + 1);
    if (sleeping_.exchange(0) != 0) futex(FUTEX_WAKE_PRIVATE, 1);
  }
  const Job& oldest() {
    while (head_.load() == tail_) {
      sleeping_.store(1);
      if (head_.load() == tail_) futex(FUTEX_WAIT_PRIVATE, 1);
    }
    sleeping_.store(0);
    return jobs_[tail_ % kRingSize];
  }
  void pop() { ++tail_; }

 private:
  void futex(int operation, uint32_t value) {
    syscall(SYS_futex, reinterpret_cast<uint32_t*>(&sleeping_), operation, value, nullptr, nullptr, 0);
  }

  std::array<Job, kRingSize> jobs_{};
  std::atomic<uint32_t> head_{0};
  std::atomic<uint32_t> sleeping_{0};
  uint32_t tail_ = 0;
};

[[noreturn]] void reply(Ring& ring) {
  for (;;) {
    const Job& job = ring.oldest();
    Reply packet = replyTo(job.request);
    iovec part{packet.data(), packet.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    sendmsg(job.peer, &message, MSG_NOSIGNAL);
    ring.pop();
  }
}

void watch(int epoll, int fd) {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = fd;
  epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &event);
}

class Receiver {
 public:
  Receiver() {
    for (std::size_t i = 0; i < kBatch; ++i) {
      parts_[i] = {requests_[i].data(), requests_[i].size()};
      messages_[i].msg_hdr.msg_iov = &parts_[i];
      messages_[i].msg_hdr.msg_iovlen = 1;
    }
  }
  // Hands over everything a ready peer has sent, and closes the connection of one that has gone.
  void drain(int peer, Ring& ring) {
    const int count = recvmmsg(peer, messages_.data(), kBatch, MSG_DONTWAIT, nullptr);
    if (count <= 0 || messages_[0].msg_len == 0) {
      close(peer);
      return;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
      if (messages_[i].msg_len == kRequestSize) ring.push({peer, requests_[i]});
  }

 private:
  std::array<Request, kBatch> requests_{};
  std::array<iovec, kBatch> parts_{};
  std::array<mmsghdr, kBatch> messages_{};
};

[[noreturn]] void receive(int listener, Ring& ring) {
  Receiver receiver;
  const int epoll = epoll_create1(0);
  watch(epoll, listener);
  std::array<epoll_event, kBatch> events{};
  for (;;) {
    const int count = epoll_wait(epoll, events.data(), static_cast<int>(events.size()), -1);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count < 0 ? 0 : count); ++i) {
      if (events[i].data.fd == listener)
        watch(epoll, acceptPeer(listener));
      else
        receiver.drain(events[i].data.fd, ring);
    }
  }
}

}  // namespace

void serveHop(int listener, int threads) {
  static Ring ring;
  for (int surplus = 3; surplus < threads; ++surplus) std::thread([] { pause(); }).detach();
  std::thread([] { reply(ring); }).detach();
  std::thread([listener] { receive(listener, ring); }).detach();
  for (;;) pause();
}

}  // namespace bench
