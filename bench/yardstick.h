// The least that a server of such packets has to do, as a program of its own: bare (one thread receives and
// replies) or hop (one thread receives, another replies).
#pragma once

#include <algorithm>
#include <array>

#include "packet.h"

namespace bench {

using Reply = std::array<unsigned char, kReplySize>;

// A reply of the right size that begins with the request's head.
inline Reply replyTo(const Request& request) {
  Reply reply{};
  std::copy_n(request.begin(), kHead, reply.begin());
  return reply;
}

// Takes the first packet of a new connection, who the peer is, and repeats it. The connection, or -1.
int acceptPeer(int listener);

// Both serve for ever. threads: those that the process has in all, the surplus ones sleep.
[[noreturn]] void serveBare(int listener);
[[noreturn]] void serveHop(int listener, int threads);

}  // namespace bench
