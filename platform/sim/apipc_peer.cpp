#include "apipc_peer.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <utility>

using simboard::SendResult;
using std::chrono::steady_clock;

SendResult __apsess_st::send(std::span<const unsigned char> packet) {
  for (bool waited = false;; waited = true) {
    ssize_t sent = 0;
    do {
      sent = ::send(fd(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    } while (sent < 0 && errno == EINTR);
    if (sent >= 0) {
      if (!waited) patienceUs_.store(kPatienceUs, std::memory_order_relaxed);
      return SendResult::Sent;
    }
    if (errno != EAGAIN) return SendResult::Failed;
    if (patienceUs_.load() <= 0) return SendResult::TooSlow;
    awaitRoom();
  }
}

// Uses up patience. It grows back only when a packet finds room at once, so a peer that reads a little now
// and then does not cost its 50 ms again for every packet.
void __apsess_st::awaitRoom() {
  const int32_t left = std::max(patienceUs_.load(), 0);
  pollfd room{fd(), POLLOUT, 0};
  const auto begin = steady_clock::now();
  const int ready = ::poll(&room, 1, (left + 999) / 1000);
  const auto spent =
      std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - begin).count();
  patienceUs_.fetch_sub(ready == 0 ? left : static_cast<int32_t>(std::min<int64_t>(spent, left)));
}

void __apsess_st::shutDown() {
  closed_.store(true, std::memory_order_release);
  ::shutdown(fd(), SHUT_RDWR);
}

bool __apsess_st::hungUp() const {
  pollfd state{fd(), POLLRDHUP, 0};
  return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

namespace simboard {

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
  if (peer.send(answer) != SendResult::Sent) return false;
  peer.task = task;
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
