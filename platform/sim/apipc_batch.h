// Several packets taken from a socket with one call.
#ifndef PLATFORM_SIM_APIPC_BATCH_H
#define PLATFORM_SIM_APIPC_BATCH_H

#include <sys/socket.h>

#include <array>
#include <cstddef>
#include <span>

#include "apipc_packet.h"

namespace simboard {

class PacketBatch {
 public:
  static constexpr unsigned int kCapacity = 16;

  PacketBatch();
  PacketBatch(const PacketBatch&) = delete;
  PacketBatch& operator=(const PacketBatch&) = delete;
  ~PacketBatch();

  /** False: there was no memory for it. */
  bool usable() const { return memory_ != nullptr; }

  /** Takes up to `limit` packets that are there already. Their number; 0: none is there; -1: the connection
   * failed. */
  int receive(int fd, unsigned int limit);

  /** Length of a packet as it was sent; 0 also stands for the end of the connection. */
  std::size_t length(int index) const { return headers_[static_cast<std::size_t>(index)].msg_len; }

  /** Its bytes, as many as may pass at all (kMaxPacket). */
  std::span<const unsigned char> bytes(int index) const;

  /** Hands memory that only a burst of long packets needs back to the system. */
  void releaseAfterBurst();

 private:
  std::array<mmsghdr, kCapacity> headers_{};
  std::array<iovec, kCapacity> vectors_{};
  unsigned char* memory_ = nullptr;  // a slot for each packet; pages come into being as packets reach them
  bool burst_ = false;
};

}  // namespace simboard

#endif
