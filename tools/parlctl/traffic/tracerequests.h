// Requests as the trace at -debug tells them, each folded into one record.
#pragma once

#include <optional>

#include "peer/frame.h"
#include "tracelog.h"

namespace parlctl {

struct TracedRequest {
  int64_t milliseconds = 0;     // when the daemon took it
  uint32_t task = 0;            // who asked
  peer::Bytes frame;            // as it arrived
  std::size_t frameLength = 0;  // more than the frame has: the trace cut it
  std::optional<unsigned> ack;  // of the reply; nothing: none was sent
  std::size_t replyBytes = 0;   // data bytes of the reply; the trace does not say which
  int64_t microseconds = 0;     // from taking it to the end of its handling; the stamps count milliseconds
  std::vector<std::string> errors;  // error lines meanwhile, without their banners

  bool whole() const { return frame.size() == frameLength; }
};

// Takes lines as they come, of all threads, and gives a request when its handling has ended.
class RequestFolder {
 public:
  std::optional<TracedRequest> take(const TraceLine& line);

 private:
  std::optional<TracedRequest> open_;
};

// The fields of the frame and the data that are there; nothing when it is shorter than its fields. A read
// carries no data, whatever its length says.
std::optional<peer::Frame> requestFrame(const TracedRequest& request);

// "lsd", "vsp", "videod", "tool 6A0" or the identifier.
std::string taskName(uint32_t task);

}  // namespace parlctl
