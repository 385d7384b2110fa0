// Connections: admitted, greeted, removed.
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include "apipc_loop.h"

namespace simboard {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMaxPeers = 128;
constexpr auto kGreetingTime = 2s;
constexpr auto kPauseWithoutMeans = 100ms;
constexpr uint32_t kMaxWaitingOfOne = 4 << 20;
constexpr uint32_t kServiceCode = 0x00FFFFFF;

}  // namespace

// Without means for a connection the one that waits would wake the thread for ever: the listener is left
// alone for a while.
void MessageService::acceptOne() {
  Accepted accepted = acceptPeer(listener_);
  if (accepted.arrival == Arrival::Admitted) {
    admit(std::move(accepted.socket));
  } else if (accepted.arrival == Arrival::NoMeans) {
    unwatch(listener_.get());
    listenAgainAt_ = boardTime() + kPauseWithoutMeans;
  }
}

void MessageService::admit(FileDescriptor socket) {
  if (peers_.all().size() >= kMaxPeers) return;
  auto peer = std::make_shared<Peer>(std::move(socket), outgoing_, boardTime() + kGreetingTime);
  if (!watch(peer->fd(), peer.get())) return;
  ++nameless_;
  peers_.add(std::move(peer));
}

void MessageService::greet(Peer& peer) {
  std::array<unsigned char, 4> name{};
  const ssize_t length = ::recv(peer.fd(), name.data(), name.size(), MSG_DONTWAIT | MSG_TRUNC);
  if (length < 0 && (errno == EAGAIN || errno == EINTR)) return;
  const uint32_t task = (self_ & ~kServiceCode) | (readLe32(name) & kServiceCode);
  if (length != static_cast<ssize_t>(name.size()) || task == self_) return remove(peer);
  peer.lane = laneOf(task);
  if (!peers_.welcome(peer, task)) return remove(peer);
  peer.greeted = true;
  --nameless_;
  if (hasPredecessor(peer)) stopReading(peer);
}

// An earlier connection of the same task that has hung up and is not read to its end: what it sent comes
// first.
bool MessageService::hasPredecessor(const Peer& peer) const {
  return std::any_of(peers_.all().begin(), peers_.all().end(), [&](const auto& other) {
    return other->greeted && other->task == peer.task && other->number < peer.number;
  });
}

// Who comes back while messages of an earlier connection wait goes on behind them.
std::shared_ptr<Lane> MessageService::laneOf(uint32_t task) {
  std::erase_if(lanes_, [](const auto& entry) { return entry.second.expired(); });
  auto lane = lanes_[task].lock();
  if (!lane) lanes_[task] = lane = std::make_shared<Lane>(kMaxWaitingOfOne);
  return lane;
}

void MessageService::remove(Peer& peer) {
  if (!peer.greeted) --nameless_;
  if (!peer.stopped) unwatch(peer.fd());
  peer.stopped = false;
  peer.shutDown();
  peers_.remove(peer);
  sweepDue_ = sweepDue_ || anyStopped_.load();  // somebody may have waited for its end
}

namespace {

auto firstNameless(const PeerDirectory::List& peers) {
  return std::find_if(peers.begin(), peers.end(), [](const auto& peer) { return !peer->greeted; });
}

}  // namespace

// Connections stand in the order of their arrival, so the first nameless one has the earliest deadline.
SteadyTime MessageService::greetingDeadline() const {
  return nameless_ == 0 ? kNever : (*firstNameless(peers_.all()))->nameBy();
}

void MessageService::closeSilentPeers(SteadyTime now) {
  while (greetingDeadline() <= now) remove(**firstNameless(peers_.all()));
}

}  // namespace simboard
