// The head and label in front of every frame: what a packet must look like to be let in.
#ifndef PLATFORM_SIM_APIPC_PACKET_H
#define PLATFORM_SIM_APIPC_PACKET_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace simboard {

/** The board's time, which a test may move. */
using SteadyTime = std::chrono::time_point<std::chrono::steady_clock, std::chrono::microseconds>;
SteadyTime boardTime();
inline constexpr SteadyTime kNever = SteadyTime::max();

inline constexpr std::size_t kHeadSize = 28;
inline constexpr std::size_t kMaxFrame = 65536;
inline constexpr std::size_t kMaxPacket = kHeadSize + kMaxFrame;

/** The little-endian word at the start of four or more bytes. */
uint32_t readLe32(std::span<const unsigned char> bytes);
std::array<unsigned char, 4> toLe32(uint32_t value);

/** "0x010a3900". */
std::string hexWord(uint32_t value);

/** What is wrong with a packet of `length` bytes from `sender`, in words; nothing when it may pass. `start`
 * holds its first kHeadSize bytes, or all of it if it is shorter. */
std::optional<std::string> packetFault(std::span<const unsigned char> start, std::size_t length,
                                       uint32_t sender);

/** Counts dropped packets and names them on standard error, one line a second at most. */
class DropReport {
 public:
  void add(uint32_t sender, const std::string& why, SteadyTime now);

  /** When drops that no line has told yet become due; kNever if there are none. */
  SteadyTime due() const { return untold_ == 0 ? kNever : lastLine_ + kInterval; }

  /** Tells what is due. */
  void tellDue(SteadyTime now);

 private:
  static constexpr std::chrono::seconds kInterval{1};
  void tell(SteadyTime now);

  uint64_t dropped_ = 0;
  uint64_t untold_ = 0;
  uint32_t lastSender_ = 0;
  std::string lastWhy_;
  SteadyTime lastLine_ = SteadyTime::min();
};

}  // namespace simboard

#endif
