#include "apipc_peer.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <utility>

void __apsess_st::shutDown() {
  closed_.store(true, std::memory_order_release);
  ::shutdown(fd(), SHUT_RDWR);
  outgoing_.close();
}

bool __apsess_st::hungUp() const {
  pollfd state{fd(), POLLRDHUP, 0};
  return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

namespace simboard {
namespace {

// Of the process, not of a service: a service may follow on another.
uint64_t nextNumber() {
  static std::atomic<uint64_t> given{0};
  return ++given;
}

}  // namespace

void PeerDirectory::add(std::shared_ptr<Peer> peer) {
  const std::lock_guard guard(lock_);
  peers_.push_back(std::move(peer));
}

void PeerDirectory::remove(const Peer& peer) {
  const std::lock_guard guard(lock_);
  std::erase_if(peers_, [&](const auto& entry) { return entry.get() == &peer; });
}

// The holder may have gone without our having read to the end of what it sent: its name is free then.
bool PeerDirectory::welcome(Peer& peer, uint32_t task) {
  const std::lock_guard guard(lock_);
  if (const auto holder = findLocked(task)) {
    if (!holder->hungUp()) return false;
    holder->reachable = false;
  }
  const auto answer = toLe32(task);
  if (peer.outgoing().send(answer) != SendResult::Sent) return false;
  peer.task = task;
  peer.number = nextNumber();
  peer.reachable = true;
  return true;
}

std::shared_ptr<Peer> PeerDirectory::find(uint32_t task) const {
  const std::lock_guard guard(lock_);
  return findLocked(task);
}

std::shared_ptr<Peer> PeerDirectory::findLocked(uint32_t task) const {
  const auto found = std::find_if(peers_.begin(), peers_.end(), [task](const auto& peer) {
    return peer->reachable && peer->task == task && !peer->closed();
  });
  return found == peers_.end() ? nullptr : *found;
}

void PeerDirectory::shutDownAll() const {
  const std::lock_guard guard(lock_);
  for (const auto& peer : peers_) peer->shutDown();
}

}  // namespace simboard
