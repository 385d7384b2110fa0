// The waiting thread's turn: what woke it, and what is due.
#include "apipc_loop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace simboard {
namespace {

constexpr int kEvents = 16;

}  // namespace

MessageService::MessageService(const std::string& path, uint32_t self)
    : self_(self),
      epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      signal_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      listener_(openListener(path)),
      load_(kMostOfFloods) {
  ready_ = epoll_ && signal_ && listener_ && batch_.usable() && watch(signal_.get(), &signal_) &&
           watch(listener_.get(), &listener_) && watch(outgoing_.fd(), &outgoing_);
}

int MessageService::wait(void* context, apipc_recv_cb callback) {
  const Receiver receiver{context, callback};
  std::array<epoll_event, kEvents> events{};
  while (!closed()) {
    const int count = ::epoll_wait(epoll_.get(), events.data(), kEvents, pauseMs());
    for (int i = 0; i < count; ++i) handleEvent(events[static_cast<std::size_t>(i)].data.ptr, receiver);
    while (sweepDue_) sweep();
    if (nextDeadline() != kNever) handleDeadlines();
  }
  turnEverybodyOut();
  return -1;
}

// Somebody may have been let in, or have queued up at the listener, while the service was being closed.
void MessageService::turnEverybodyOut() {
  listener_ = FileDescriptor();
  peers_.shutDownAll();
}

// While the events of a turn are handled a connection is removed in its own event only: a later one never
// names a connection that is gone. That is why the sweep waits for the end of the turn.
void MessageService::handleEvent(void* tag, const Receiver& receiver) {
  if (tag == &signal_) {
    sweepDue_ = true;
  } else if (tag == &listener_) {
    acceptOne();
  } else if (tag == &outgoing_) {
    flushOutgoing();
  } else if (auto& peer = *static_cast<Peer*>(tag); peer.greeted) {
    readFrom(peer, receiver);
  } else {
    greet(peer);
  }
}

void MessageService::flushOutgoing() {
  std::array<epoll_event, kEvents> ready{};
  const int count = ::epoll_wait(outgoing_.fd(), ready.data(), kEvents, 0);
  for (int i = 0; i < count; ++i) {
    auto& peer = *static_cast<Peer*>(ready[static_cast<std::size_t>(i)].data.ptr);
    if (peer.outgoing().flush()) continue;
    peer.shutDown();
    sweepDue_ = true;
  }
}

void MessageService::sweep() {
  const PeerDirectory::List peers = peers_.all();
  eventfd_t count = 0;
  ::eventfd_read(signal_.get(), &count);
  sweepDue_ = false;
  for (const auto& peer : peers) {
    if (peer->closed()) {
      remove(*peer);
    } else if (peer->stopped && mayResume(*peer)) {
      resumeReading(*peer);
    }
  }
  anyStopped_.store(std::any_of(peers.begin(), peers.end(), [](const auto& peer) { return peer->stopped; }));
}

SteadyTime MessageService::nextDeadline() const {
  return std::min({greetingDeadline(), listenAgainAt_, drops_.due()});
}

int MessageService::pauseMs() const {
  const SteadyTime next = nextDeadline();
  if (next == kNever) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - boardTime());
  return static_cast<int>(std::max<int64_t>(left.count(), 0));
}

void MessageService::handleDeadlines() {
  const SteadyTime now = boardTime();
  closeSilentPeers(now);
  drops_.tellDue(now);
  if (listenAgainAt_ <= now) {
    listenAgainAt_ = kNever;
    watch(listener_.get(), &listener_);
  }
}

bool MessageService::watch(int fd, void* tag) const {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.ptr = tag;
  return ::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, fd, &event) == 0;
}

void MessageService::unwatch(int fd) const {
  ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, fd, nullptr);
}

void MessageService::signal() const {
  ::eventfd_write(signal_.get(), 1);
}

}  // namespace simboard
