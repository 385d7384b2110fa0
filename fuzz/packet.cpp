// Packets at the message service's door, and replies as a peer takes them apart.
#include <cstdlib>

#include "apipc_packet.h"
#include "peer/error.h"
#include "peer/frame.h"

namespace {

void takeApart(std::span<const uint8_t> packet) try {
  const peer::Head head = peer::decodeHead(packet);
  const peer::Frame frame = peer::decode(packet.subspan(peer::kHeadSize));
  if (peer::encode(head).size() != peer::kHeadSize) std::abort();
  if (peer::encode(frame).size() < peer::kFrameOverhead) std::abort();
} catch (const peer::Error&) {
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::span packet(data, size);
  const uint32_t sender = size >= 4 ? simboard::readLe32(packet) : 0;
  const bool passes = !simboard::packetFault(packet.first(std::min(size, simboard::kHeadSize)), size, sender);
  if (passes && (size < simboard::kHeadSize || size > simboard::kMaxPacket)) std::abort();
  takeApart(packet);
  return 0;
}
