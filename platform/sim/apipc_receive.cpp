// Packets on their way to the receiving thread, and holding back peers that send faster than it works.
#include <malloc.h>

#include <algorithm>
#include <chrono>

#include "apipc_loop.h"

namespace simboard {
namespace {

constexpr uint32_t kHeaviest = weightOf(kMaxPacket);
static_assert(kEnoughRoom >= kHeaviest * PacketBatch::kCapacity);

constexpr uint32_t kFlood = 4 << 20;

// What floods leave free of the room for all is for those of whom little waits.
constexpr uint32_t kMostOfAll = 16 << 20;
constexpr uint32_t kLight = 256 << 10;
static_assert(MessageService::kMostOfFloods < kMostOfAll);

}  // namespace

void MessageService::readFrom(Peer& peer, const Receiver& receiver) {
  if (peer.closed()) return remove(peer);
  const unsigned int wanted = packetsThatFit(peer);
  if (wanted == 0) return stopReading(peer);
  const int count = batch_.receive(peer.fd(), wanted);
  if (count < 0) return remove(peer);
  for (int i = 0; i < count; ++i) {
    if (batch_.length(i) == 0) return remove(peer);
    takePacket(peer, i, receiver);
  }
  if (static_cast<unsigned int>(count) < wanted) batch_.releaseAfterBurst();
}

void MessageService::takePacket(Peer& peer, int index, const Receiver& receiver) {
  const std::size_t length = batch_.length(index);
  const auto bytes = batch_.bytes(index);
  if (const auto fault = packetFault(bytes, length, peer.task)) {
    return drops_.add(peer.task, *fault, boardTime());
  }
  offered_ = makeMessage(peer.lane, bytes);
  if (!offered_) return drops_.add(peer.task, "no memory", boardTime());
  receiver.callback(&peer, receiver.context, offered_, static_cast<int>(length));
  if (Message* const refused = std::exchange(offered_, nullptr)) freeMessage(refused);
}

bool MessageService::enqueue(Message* message) {
  if (!message || message != offered_) return false;
  offered_ = nullptr;
  const uint32_t weight = weightOf(message->length);
  message->lane->add(weight);
  load_.add(weight);
  queue_.push(message);
  return true;
}

void MessageService::release(Message* message) {
  highestLoad_ = std::max(highestLoad_, load_.bytes());
  const uint32_t weight = weightOf(message->length);
  const bool laneFreed = message->lane->remove(weight);
  const bool loadFreed = load_.remove(weight);
  freeMessage(message);
  if ((laneFreed || loadFreed) && anyStopped_.load()) signal();
  if (highestLoad_ > kFlood && load_.bytes() == 0) {
    highestLoad_ = 0;
    ::malloc_trim(0);
  }
}

unsigned int MessageService::packetsThatFit(const Peer& peer) const {
  const bool light = peer.lane->bytes() <= kLight;
  const uint32_t room = light ? kMostOfAll - std::min(load_.bytes(), kMostOfAll) : load_.room();
  const uint32_t packets = std::min(peer.lane->room(), room) / kHeaviest;
  return std::min<uint32_t>(packets, PacketBatch::kCapacity);
}

bool MessageService::mayResume(const Peer& peer) const {
  return !hasPredecessor(peer) && peer.lane->comfortable() && load_.comfortable();
}

// It is no longer watched at all: a peer that hangs up meanwhile would wake the thread again and again. The
// receiving thread may have made room before it could see that somebody needs it, so the look at the room
// comes last.
void MessageService::stopReading(Peer& peer) {
  unwatch(peer.fd());
  peer.stopped = true;
  anyStopped_.store(true);
  if (mayResume(peer)) resumeReading(peer);
}

void MessageService::resumeReading(Peer& peer) {
  peer.stopped = false;
  if (!watch(peer.fd(), &peer)) remove(peer);
}

}  // namespace simboard
