#include "apipc_packet.h"

#include <cinttypes>
#include <cstdio>

#include "board_error.h"
#include "platform/board.h"

namespace simboard {
namespace {

constexpr std::size_t kLabelLengthAt = 24;

}  // namespace

std::string hexWord(uint32_t value) {
  char text[11];
  std::snprintf(text, sizeof text, "0x%08" PRIx32, value);
  return text;
}

SteadyTime boardTime() {
  return SteadyTime(std::chrono::microseconds(board_monotonic_us()));
}

uint32_t readLe32(std::span<const unsigned char> bytes) {
  return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
         static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

std::array<unsigned char, 4> toLe32(uint32_t value) {
  return {static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
          static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
}

std::optional<std::string> packetFault(std::span<const unsigned char> start, std::size_t length,
                                       uint32_t sender) {
  if (length < kHeadSize) return "only " + std::to_string(length) + " bytes, a head and label are 28";
  if (length > kMaxPacket) return std::to_string(length) + " bytes, more than 65564";
  if (const uint32_t said = readLe32(start.subspan(kLabelLengthAt)); said != length - kHeadSize) {
    return "the label says " + std::to_string(said) + " bytes, " + std::to_string(length - kHeadSize) +
           " came";
  }
  if (const uint32_t uiId = readLe32(start); uiId != sender)
    return "ui_id " + hexWord(uiId) + " is not the sender's own";
  return std::nullopt;
}

void DropReport::add(uint32_t sender, const std::string& why, SteadyTime now) {
  ++dropped_;
  ++untold_;
  lastSender_ = sender;
  lastWhy_ = why;
  tellDue(now);
}

void DropReport::tellDue(SteadyTime now) {
  if (untold_ > 0 && (dropped_ == untold_ || now - lastLine_ >= kInterval)) tell(now);
}

void DropReport::tell(SteadyTime now) {
  errorLine("apipc: dropped a packet of " + hexWord(lastSender_) + ": " + lastWhy_ + " (" +
            std::to_string(untold_) + " since the last line, " + std::to_string(dropped_) + " in all)");
  untold_ = 0;
  lastLine_ = now;
}

}  // namespace simboard
