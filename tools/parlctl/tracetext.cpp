#include "tracetext.h"

#include <algorithm>
#include <array>

#include "accessrequest.h"
#include "values.h"

namespace parlctl {

namespace {

constexpr std::size_t kShownData = 16;

// The frame's fields without its checksum, which a cut frame does not have.
std::optional<peer::Frame> fieldsOf(const TracedRequest& request) {
  constexpr std::size_t kFields = peer::kFrameOverhead - 2;
  if (request.frame.size() < kFields) return std::nullopt;
  const auto at = [&](std::size_t i) { return static_cast<uint32_t>(request.frame[i]); };
  peer::Frame frame;
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

std::string codeName(uint8_t code) {
  if (code == peer::kRead) return "read";
  return code == peer::kWrite ? "write" : "code " + std::to_string(code);
}

std::string answerText(const TracedRequest& request) {
  if (!request.ack) return "no reply";
  return *request.ack == 0 ? "ok" : "ack " + std::to_string(*request.ack);
}

std::string dataText(const peer::Frame& frame, const TracedRequest& request) {
  if (frame.code == peer::kRead) return countText(request.replyBytes, "byte");
  const std::size_t shown = std::min(frame.data.size(), kShownData);
  return peer::toHex(std::span(frame.data).first(shown)) +
         (frame.length > shown ? " +" + std::to_string(frame.length - shown) : "");
}

std::string what(const peer::Frame& frame) {
  const std::string name = targetName(frame);
  return codeName(frame.code) + ' ' + hexAddress(frame.address) + ':' + std::to_string(frame.length) +
         (name.empty() ? "" : "  " + name);
}

}  // namespace

Result decoded(const TracedRequest& request) {
  const auto frame = fieldsOf(request);
  Json fields{{"time", stampText(request.milliseconds)},
              {"task", hexAddress(request.task)},
              {"who", taskName(request.task)},
              {"frame", peer::toHex(request.frame)},
              {"whole", request.whole()},
              {"acknowledge", request.ack ? Json(*request.ack) : Json()},
              {"reply_bytes", request.replyBytes},
              {"microseconds", request.microseconds},
              {"errors", request.errors}};
  std::string text = stampText(request.milliseconds).substr(11) + "  " + taskName(request.task) + "  ";
  if (frame) {
    fields["address"] = hexAddress(frame->address);
    fields["name"] = targetName(*frame);
    fields["code"] = codeName(frame->code);
    text += what(*frame) + "  " + answerText(request) + "  " + dataText(*frame, request);
  } else {
    text += "a frame of " + countText(request.frameLength, "byte") + "  " + answerText(request);
  }
  text += "  " + std::to_string(request.microseconds) + " us";
  for (const std::string& error : request.errors) text += "\n              " + error;
  return {fields, text};
}

}  // namespace parlctl
