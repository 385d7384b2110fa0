#include "apipc_outgoing.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace simboard {
namespace {

constexpr uint32_t kMostOfAll = 16 << 20;
constexpr uint32_t kMostOfOne = 4 << 20;
constexpr int kPacketsOfATurn = 16;  // who sends to this peer meanwhile waits for no more than these

enum class Put { Done, NoRoom, Gone };

Put put(int socket, std::span<const unsigned char> packet) {
  ssize_t sent = 0;
  do {
    sent = ::send(socket, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  } while (sent < 0 && errno == EINTR);
  if (sent >= 0) return Put::Done;
  return errno == EAGAIN ? Put::NoRoom : Put::Gone;
}

}  // namespace

OutgoingRoom::OutgoingRoom() : epoll_(::epoll_create1(EPOLL_CLOEXEC)) {}

bool OutgoingRoom::take(uint32_t weight) {
  if (taken_.fetch_add(weight, std::memory_order_relaxed) + weight <= kMostOfAll) return true;
  give(weight);
  return false;
}

bool OutgoingRoom::watch(int socket, void* tag) const {
  epoll_event event{};
  event.events = EPOLLOUT;
  event.data.ptr = tag;
  return ::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, socket, &event) == 0;
}

void OutgoingRoom::unwatch(int socket) const {
  ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, socket, nullptr);
}

SendResult Outgoing::send(std::span<const unsigned char> packet) {
  const std::lock_guard guard(lock_);
  if (closed_) return SendResult::Failed;
  if (!first_) {
    const Put outcome = put(socket_, packet);
    if (outcome != Put::NoRoom) return outcome == Put::Done ? SendResult::Sent : SendResult::Failed;
  }
  return keep(packet);
}

SendResult Outgoing::keep(std::span<const unsigned char> packet) {
  const uint32_t weight = weightOf(packet.size());
  if (weight > kMostOfOne - weight_ || !room_.take(weight)) return SendResult::TooMuch;
  Message* const message = makeMessage(nullptr, packet);
  if (!message || (!first_ && !room_.watch(socket_, tag_))) {
    if (message) freeMessage(message);
    room_.give(weight);
    return SendResult::Failed;
  }
  (first_ ? last_->next : first_) = message;
  last_ = message;
  weight_ += weight;
  return SendResult::Sent;
}

void Outgoing::dropFirst() {
  Message* const message = std::exchange(first_, first_->next);
  const uint32_t weight = weightOf(message->length);
  freeMessage(message);
  weight_ -= weight;
  room_.give(weight);
  if (!first_) room_.unwatch(socket_);
}

bool Outgoing::flush() {
  const std::lock_guard guard(lock_);
  for (int i = 0; first_ && i < kPacketsOfATurn; ++i) {
    const Put outcome = put(socket_, {first_->contents(), first_->length});
    if (outcome != Put::Done) return outcome == Put::NoRoom;
    dropFirst();
  }
  return true;
}

void Outgoing::close() {
  const std::lock_guard guard(lock_);
  closed_ = true;
  while (first_) dropFirst();
}

}  // namespace simboard
