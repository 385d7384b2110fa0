#include "tracerequests.h"

#include <charconv>
#include <utility>

#include "peer/peer.h"
#include "values.h"

namespace parlctl {

namespace {

// The number behind a text, in the message; nothing when the text is not there.
std::optional<uint32_t> numberBehind(const std::string& message, std::string_view text, int base = 10) {
  const std::size_t at = message.find(text);
  if (at == std::string::npos) return std::nullopt;
  uint32_t value = 0;
  const char* begin = message.data() + at + text.size();
  const auto [stop, error] = std::from_chars(begin, message.data() + message.size(), value, base);
  if (error != std::errc{} || stop == begin) return std::nullopt;
  return value;
}

peer::Bytes bytesBehind(const std::string& message, std::string_view text) {
  const std::size_t at = message.find(text);
  if (at == std::string::npos) return {};
  std::string digits;
  for (std::size_t i = at + text.size(); i < message.size(); ++i)
    if (message[i] != ' ') digits += message[i];
  if (digits.size() % 2 != 0) digits.pop_back();  // a line is cut anywhere
  try {
    return peer::fromHex(digits);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

std::optional<TracedRequest> RequestFolder::take(const TraceLine& line) {
  const std::string& message = line.message;
  if (const auto task = numberBehind(message, "ihead_t uiid = 0x", 16); task) {
    open_ = TracedRequest{};
    open_->milliseconds = line.milliseconds;
    open_->task = *task;
  }
  if (!open_) return std::nullopt;
  if (const auto length = numberBehind(message, "the new Packet's datalength = "); length) {
    open_->frameLength = *length;
    open_->frame = bytesBehind(message, "the Data = ");
  }
  if (const auto ack = numberBehind(message, "ReplyMsg: the ack = "); ack) open_->ack = *ack;
  constexpr std::string_view kReplied = "reply message successfully. ret = 0 datalength = ";
  constexpr std::size_t kAround = peer::kHeadSize + peer::kFrameOverhead;
  if (const auto length = numberBehind(message, kReplied); length && *length >= kAround)
    open_->replyBytes = *length - kAround;
  if (line.level == TraceLevel::Error) open_->errors.push_back(message);
  if (message.find("Finish Deal DataBlock") == std::string::npos) return std::nullopt;
  open_->microseconds = (line.milliseconds - open_->milliseconds) * 1000;
  return std::exchange(open_, std::nullopt);
}

std::optional<peer::Frame> requestFrame(const TracedRequest& request) {
  constexpr std::size_t kFields = peer::kFrameOverhead - 2;
  if (request.frame.size() < kFields) return std::nullopt;
  const auto at = [&](std::size_t i) { return static_cast<uint32_t>(request.frame[i]); };
  peer::Frame frame;
  frame.tag = {request.frame[0], request.frame[1]};
  frame.ack = request.frame[2];
  frame.label = request.frame[3];
  frame.source = request.frame[4];
  frame.destination = request.frame[5];
  frame.reserved = request.frame[11];
  frame.deviceType = request.frame[6];
  frame.port = request.frame[7];
  frame.board = static_cast<uint16_t>(at(8) | at(9) << 8);
  frame.code = request.frame[10];
  frame.address = at(12) | at(13) << 8 | at(14) << 16 | at(15) << 24;
  frame.length = static_cast<uint16_t>(at(16) | at(17) << 8);
  const std::size_t end = request.whole() ? request.frame.size() - 2 : request.frame.size();
  if (end > kFields)
    frame.data.assign(request.frame.begin() + kFields, request.frame.begin() + static_cast<long>(end));
  return frame;
}

std::string taskName(uint32_t task) {
  constexpr uint32_t kServiceMask = 0x00FFFFFF;
  for (const char* name : {"lsd", "vsp", "videod"})
    if (peer::serviceCode(name) == (task & kServiceMask)) return name;
  const std::string text = hexAddress(task);
  return (task & 0x00FFF000) == 0x000A7000 ? "tool " + text.substr(7) : text;
}

}  // namespace parlctl
