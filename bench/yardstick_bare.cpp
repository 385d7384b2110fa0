#include <sys/socket.h>
#include <unistd.h>

#include "yardstick.h"

namespace bench {

void serveBare(int listener) {
  for (;;) {
    const int peer = acceptPeer(listener);
    Request request;
    while (recv(peer, request.data(), request.size(), 0) == static_cast<ssize_t>(request.size())) {
      const Reply reply = replyTo(request);
      if (send(peer, reply.data(), reply.size(), MSG_NOSIGNAL) < 0) break;
    }
    close(peer);
  }
}

}  // namespace bench
