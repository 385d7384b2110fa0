// The bytes on the message service: a 28-byte head and, behind it, one register-access frame.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace peer {

using Bytes = std::vector<uint8_t>;

inline constexpr std::size_t kHeadSize = 28;
inline constexpr std::size_t kFrameOverhead = 20;  // everything of a frame but its data
inline constexpr std::size_t kMaxFrame = 65536;
inline constexpr std::size_t kMaxData = kMaxFrame - kFrameOverhead;
inline constexpr uint16_t kFrameLabel = 0x1C;  // the label's large half on every register frame

enum Code : uint8_t { kRead = 0, kWrite = 1 };

struct Head {
  uint32_t taskId = 0;
  uint32_t labelCount = 0;
  uint32_t size = 0;
  uint32_t result = 0;
  uint32_t detail = 0;
  uint16_t small = 0;
  uint16_t large = kFrameLabel;
  uint32_t frameLength = 0;
};

struct Frame {
  std::array<uint8_t, 2> tag{0x55, 0xAA};
  uint8_t ack = 0;
  uint8_t label = 0;
  uint8_t source = 0;
  uint8_t destination = 0;
  uint8_t deviceType = 0;
  uint8_t port = 0;
  uint16_t board = 0;
  uint8_t code = kRead;
  uint8_t reserved = 0;
  uint32_t address = 0;
  uint16_t length = 0;  // bytes wanted by a read; otherwise the number of data bytes
  Bytes data{};
};

// What an acknowledge code says, in words: "refused"; of an unknown code its number.
std::string ackText(uint8_t code);

uint16_t checksum(std::span<const uint8_t> bytes);

// A frame ready to be sent, checksum included; length and data are taken as they stand.
Bytes encode(const Frame& frame);
// Reads a whole frame; throws Error (ShortReply) when it is cut, too long or its checksum is wrong.
Frame decode(std::span<const uint8_t> bytes);

Bytes encode(const Head& head);
// Reads the first 28 bytes of a packet; throws Error (ShortReply) when there are fewer.
Head decodeHead(std::span<const uint8_t> packet);

// Lower-case hexadecimal digits without blanks.
std::string toHex(std::span<const uint8_t> bytes);
// Bytes of hexadecimal text, with or without blanks; throws Error (Usage) on anything else.
Bytes fromHex(const std::string& text);

}  // namespace peer
