// Sending, looking up, and the end of the service: from any thread.
#include <sys/socket.h>

#include "apipc_loop.h"
#include "board_error.h"

namespace simboard {
namespace {

constexpr uint32_t kNamedInHead = 0x070400;  // service code: the receiver is the head's ui_id

}  // namespace

bool MessageService::send(uint32_t task, std::span<const unsigned char> packet) {
  if (packet.size() < kHeadSize || packet.size() > kMaxPacket) return false;
  const bool namedInHead = task == ((self_ & 0xFF000000) | kNamedInHead);
  const uint32_t receiver = namedInHead ? readLe32(packet) : task;
  const auto peer = peers_.find(receiver);
  if (!peer) return false;
  const SendResult result = peer->outgoing().send(packet);
  if (result == SendResult::TooMuch) {
    peer->shutDown();
    signal();
    complain(Complaint::SlowPeer,
             "apipc: " + hexWord(receiver) + " does not read what it is sent: connection closed");
  }
  return result == SendResult::Sent;
}

uint64_t MessageService::connection(uint32_t task) const {
  const auto peer = peers_.find(task);
  return peer && !peer->hungUp() ? peer->number : 0;
}

// The flag comes last: from then on the listener is the waiting thread's to close.
void MessageService::close() {
  ::shutdown(listener_.get(), SHUT_RDWR);
  peers_.shutDownAll();
  closed_.store(true);
  signal();
}

}  // namespace simboard
