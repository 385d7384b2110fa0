#include "apipc_batch.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>

namespace simboard {
namespace {

constexpr std::size_t kSlot = 0x11000;  // whole pages, so that a short packet touches one
constexpr std::size_t kMemory = kSlot * PacketBatch::kCapacity;
static_assert(kSlot >= kMaxPacket);

constexpr std::size_t kLongPacket = 4096;
constexpr int kBurst = 4;

}  // namespace

PacketBatch::PacketBatch() {
  void* const memory =
      ::mmap(nullptr, kMemory, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return;
  memory_ = static_cast<unsigned char*>(memory);
  for (std::size_t i = 0; i < kCapacity; ++i) {
    vectors_[i] = {memory_ + i * kSlot, kMaxPacket};
    headers_[i].msg_hdr.msg_iov = &vectors_[i];
    headers_[i].msg_hdr.msg_iovlen = 1;
  }
}

PacketBatch::~PacketBatch() {
  if (memory_) ::munmap(memory_, kMemory);
}

// A peer that closes with packets of ours unread resets the connection: the error comes once, ahead of what
// the peer sent before.
int PacketBatch::receive(int fd, unsigned int limit) {
  int count = 0;
  do {
    count = ::recvmmsg(fd, headers_.data(), std::min(limit, kCapacity), MSG_DONTWAIT | MSG_TRUNC, nullptr);
  } while (count < 0 && (errno == EINTR || errno == ECONNRESET));
  if (count < 0) return errno == EAGAIN ? 0 : -1;
  burst_ = burst_ || (count >= kBurst && length(kBurst - 1) > kLongPacket);
  return count;
}

std::span<const unsigned char> PacketBatch::bytes(int index) const {
  return {memory_ + static_cast<std::size_t>(index) * kSlot, std::min(length(index), kMaxPacket)};
}

void PacketBatch::releaseAfterBurst() {
  if (burst_) ::madvise(memory_, kMemory, MADV_DONTNEED);
  burst_ = false;
}

}  // namespace simboard
