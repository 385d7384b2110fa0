#include "peer/frame.h"

#include <algorithm>
#include <cctype>
#include <numeric>

#include "peer/error.h"

namespace peer {

namespace {

void put(Bytes& bytes, uint32_t value, unsigned count) {
  for (unsigned i = 0; i < count; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

uint32_t get(std::span<const uint8_t> bytes, std::size_t offset, unsigned count) {
  uint32_t value = 0;
  for (unsigned i = count; i-- > 0;) value = value << 8 | bytes[offset + i];
  return value;
}

uint16_t get16(std::span<const uint8_t> bytes, std::size_t offset) {
  return static_cast<uint16_t>(get(bytes, offset, 2));
}

int digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

struct AckText {
  uint8_t code;
  const char* text;
};
constexpr std::array kAckTexts{
    AckText{0, "done"},
    AckText{1, "a card did not answer"},
    AckText{2, "the checksum of the request is wrong"},
    AckText{4, "the daemon refuses it: no such register, not with this length, or its hardware failed"},
    AckText{5, "it reaches beyond the registers of the space"},
    AckText{6, "the register does not take this length"},
    AckText{7, "the register does not allow this access"},
};

}  // namespace

std::string ackText(uint8_t code) {
  for (const AckText& row : kAckTexts)
    if (row.code == code) return row.text;
  return "the daemon gives a code without a name";
}

uint16_t checksum(std::span<const uint8_t> bytes) {
  return static_cast<uint16_t>(std::accumulate(bytes.begin(), bytes.end(), uint32_t{0x5555}));
}

Bytes encode(const Frame& frame) {
  Bytes bytes{frame.tag[0], frame.tag[1],      frame.ack,        frame.label,
              frame.source, frame.destination, frame.deviceType, frame.port};
  bytes.reserve(kFrameOverhead + frame.data.size());
  put(bytes, frame.board, 2);
  bytes.push_back(frame.code);
  bytes.push_back(frame.reserved);
  put(bytes, frame.address, 4);
  put(bytes, frame.length, 2);
  bytes.insert(bytes.end(), frame.data.begin(), frame.data.end());
  put(bytes, checksum(std::span(bytes).subspan(2)), 2);
  return bytes;
}

Frame decode(std::span<const uint8_t> bytes) {
  if (bytes.size() < kFrameOverhead)
    throw Error(Failure::ShortReply, "a frame of only " + std::to_string(bytes.size()) + " bytes");
  const std::size_t end = bytes.size() - 2;
  if (checksum(bytes.first(end).subspan(2)) != get16(bytes, end))
    throw Error(Failure::ShortReply, "a frame with a wrong checksum");
  Frame frame{.tag = {bytes[0], bytes[1]},
              .ack = bytes[2],
              .label = bytes[3],
              .source = bytes[4],
              .destination = bytes[5],
              .deviceType = bytes[6],
              .port = bytes[7],
              .board = get16(bytes, 8),
              .code = bytes[10],
              .reserved = bytes[11],
              .address = get(bytes, 12, 4),
              .length = get16(bytes, 16),
              .data = {}};
  const std::span<const uint8_t> data = bytes.first(end).subspan(18);
  if (data.size() != frame.length)
    throw Error(Failure::ShortReply, "a frame that carries " + std::to_string(data.size()) +
                                         " data bytes where it says " + std::to_string(frame.length));
  frame.data.assign(data.begin(), data.end());
  return frame;
}

Bytes encode(const Head& head) {
  Bytes bytes;
  bytes.reserve(kHeadSize);
  for (const uint32_t word : {head.taskId, head.labelCount, head.size, head.result, head.detail})
    put(bytes, word, 4);
  put(bytes, head.small, 2);
  put(bytes, head.large, 2);
  put(bytes, head.frameLength, 4);
  return bytes;
}

Head decodeHead(std::span<const uint8_t> packet) {
  if (packet.size() < kHeadSize)
    throw Error(Failure::ShortReply, "a message of only " + std::to_string(packet.size()) + " bytes");
  return {.taskId = get(packet, 0, 4),
          .labelCount = get(packet, 4, 4),
          .size = get(packet, 8, 4),
          .result = get(packet, 12, 4),
          .detail = get(packet, 16, 4),
          .small = get16(packet, 20),
          .large = get16(packet, 22),
          .frameLength = get(packet, 24, 4)};
}

std::string toHex(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(2 * bytes.size());
  for (const uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

Bytes fromHex(const std::string& text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
               [](unsigned char c) { return std::isspace(c) == 0; });
  if (digits.size() % 2 != 0)
    throw Error(Failure::Usage, "an odd number of hexadecimal digits: '" + text + "'");
  Bytes bytes;
  bytes.reserve(digits.size() / 2);
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const int high = digit(digits[i]);
    const int low = digit(digits[i + 1]);
    if (high < 0 || low < 0) throw Error(Failure::Usage, "not hexadecimal: '" + text + "'");
    bytes.push_back(static_cast<uint8_t>(high << 4 | low));
  }
  return bytes;
}

}  // namespace peer
