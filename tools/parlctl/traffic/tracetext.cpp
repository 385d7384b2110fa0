#include "tracetext.h"

#include <algorithm>
#include <array>

#include "accessrequest.h"
#include "helptext.h"
#include "values.h"

namespace parlctl {

namespace {

constexpr std::size_t kShownData = 6;

std::string codeName(uint8_t code) {
  if (code == peer::kRead) return "read";
  return code == peer::kWrite ? "write" : "code " + std::to_string(code);
}

std::string answerText(const TracedRequest& request) {
  if (!request.ack) return "no reply";
  return *request.ack == 0 ? "ok" : "ack " + std::to_string(*request.ack);
}

// Of a read, what it gave where that is not what it asked for; else the first bytes written.
std::string dataText(const peer::Frame& frame, const TracedRequest& request) {
  if (frame.code == peer::kRead)
    return !request.ack || request.replyBytes == frame.length ? ""
                                                              : ' ' + countText(request.replyBytes, "byte");
  const std::size_t shown = std::min(frame.data.size(), kShownData);
  return ' ' + peer::toHex(std::span(frame.data).first(shown)) +
         (frame.length > shown ? '+' + std::to_string(frame.length - shown) : "");
}

// The trace's stamps have milliseconds: what begins and ends in the same one took less than the next.
std::string durationText(const TracedRequest& request) {
  return request.microseconds == 0 ? " <1000 us" : ' ' + std::to_string(request.microseconds) + " us";
}

// As much of it as the line has room for.
std::string nameBehind(const std::string& line, const std::string& name) {
  constexpr std::size_t kShortest = 4;
  const std::size_t room = kColumns - std::min(kColumns, line.size() + 1);
  if (name.size() <= room) return ' ' + name;
  return room < kShortest ? "" : ' ' + name.substr(0, room - 2) + "..";
}

std::string what(const peer::Frame& frame) {
  return codeName(frame.code) + ' ' + hexAddress(frame.address) + ':' + std::to_string(frame.length);
}

}  // namespace

Result decoded(const TracedRequest& request) {
  const auto frame = requestFrame(request);
  Json fields{{"time", isoText(request.milliseconds)},
              {"task", hexAddress(request.task)},
              {"who", taskName(request.task)},
              {"frame", peer::toHex(request.frame)},
              {"whole", request.whole()},
              {"acknowledge", request.ack ? Json(*request.ack) : Json()},
              {"reply_bytes", request.replyBytes},
              {"microseconds", request.microseconds},
              {"errors", request.errors}};
  std::string text = stampText(request.milliseconds).substr(11) + ' ' + taskName(request.task) + ' ';
  if (frame) {
    fields["address"] = hexAddress(frame->address);
    fields["name"] = targetName(*frame);
    fields["code"] = codeName(frame->code);
    text += what(*frame) + ' ' + answerText(request) + dataText(*frame, request) + durationText(request);
    text += nameBehind(text, targetName(*frame));
  } else {
    text += "a frame of " + countText(request.frameLength, "byte") + ' ' + answerText(request) +
            durationText(request);
  }
  for (const std::string& error : request.errors) text += '\n' + wrapped("             " + error, 15);
  return {fields, text};
}

}  // namespace parlctl
