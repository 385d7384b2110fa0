#include "yardstick.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace bench {
namespace {

int listenAt(const char* path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::size_t length = std::strlen(path);
  if (length >= sizeof address.sun_path) return -1;
  std::memcpy(address.sun_path, path, length + 1);
  std::remove(path);
  const int fd = socket(AF_UNIX, SOCK_SEQPACKET, 0);
  if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return -1;
  return listen(fd, 16) == 0 ? fd : -1;
}

}  // namespace

int acceptPeer(int listener) {
  const int fd = accept(listener, nullptr, nullptr);
  uint32_t task = 0;
  if (recv(fd, &task, sizeof task, 0) != sizeof task) return -1;
  return send(fd, &task, sizeof task, MSG_NOSIGNAL) == sizeof task ? fd : -1;
}

}  // namespace bench

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: bench_yardstick bare|hop SOCKET THREADS\n", stderr);
    return 2;
  }
  const int listener = bench::listenAt(argv[2]);
  if (listener < 0) {
    std::perror(argv[2]);
    return 1;
  }
  if (std::string_view(argv[1]) == "bare") bench::serveBare(listener);
  bench::serveHop(listener, static_cast<int>(std::strtol(argv[3], nullptr, 10)));
}
