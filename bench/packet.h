// The packets that a peer and the daemon exchange for one 16-byte register read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace bench {

inline constexpr std::size_t kHead = 28;
inline constexpr std::size_t kReadBytes = 16;
inline constexpr std::size_t kRequestSize = kHead + 20;
inline constexpr std::size_t kReplySize = kHead + 20 + kReadBytes;
inline constexpr uint32_t kRegister = 0xF0000000;    // the FPGA bus: answered from memory, no card, no queue
inline constexpr uint32_t kFirstService = 0x0A5000;  // service codes that no peer of the device has

using Request = std::array<unsigned char, kRequestSize>;

constexpr void put32(Request& packet, std::size_t at, uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) packet[at + i] = static_cast<unsigned char>(value >> (8 * i));
}

// A read of kReadBytes by the peer of that task identifier.
constexpr Request readRequest(uint32_t task, uint32_t address = kRegister) {
  Request packet{};
  put32(packet, 0, task);
  put32(packet, 4, 1);
  put32(packet, 20, 0x001C0000);
  put32(packet, 24, kRequestSize - kHead);
  packet[kHead] = 0x55;
  packet[kHead + 1] = 0xAA;
  put32(packet, kHead + 12, address);
  packet[kHead + 16] = kReadBytes;
  uint32_t sum = 0x5555;
  for (std::size_t i = kHead + 2; i < kHead + 18; ++i) sum += packet[i];
  packet[kHead + 18] = static_cast<unsigned char>(sum);
  packet[kHead + 19] = static_cast<unsigned char>(sum >> 8);
  return packet;
}

}  // namespace bench
