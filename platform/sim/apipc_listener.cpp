#include "apipc_listener.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "board_error.h"

namespace simboard {
namespace {

constexpr int kBacklog = 128;
constexpr int kSendBuffer = 1 << 18;  // the system may grant less; a few of the longest packets always fit

/** A socket address has room for about a hundred characters; a longer path is reached through its directory's
 * descriptor. */
class SocketAddress {
 public:
  explicit SocketAddress(const std::string& path) {
    std::string name = path;
    if (name.size() >= sizeof address_.sun_path) {
      const std::size_t slash = path.rfind('/');
      directory_ = FileDescriptor(::open(path.substr(0, slash).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
      name = "/proc/self/fd/" + std::to_string(directory_.get()) + path.substr(slash);
    }
    address_.sun_family = AF_UNIX;
    name.copy(address_.sun_path, sizeof address_.sun_path - 1);
  }

  const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
  static constexpr socklen_t size() { return sizeof(sockaddr_un); }

 private:
  FileDescriptor directory_;
  sockaddr_un address_{};
};

void removeStaleSocket(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode)) ::unlink(path.c_str());
}

/** Nobody can connect before listen(), so the mode is right from the first moment on. */
bool listenAt(int fd, const std::string& path) {
  const SocketAddress address(path);
  return ::bind(fd, address.get(), SocketAddress::size()) == 0 && ::chmod(path.c_str(), 0600) == 0 &&
         ::listen(fd, kBacklog) == 0;
}

bool mayConnect(int fd) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return false;
  return peer.uid == 0 || peer.uid == ::geteuid();
}

}  // namespace

FileDescriptor openListener(const std::string& path) {
  FileDescriptor listener(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  ::mkdir(path.substr(0, path.rfind('/')).c_str(), 0755);
  removeStaleSocket(path);
  if (listener && listenAt(listener.get(), path)) return listener;
  complain(Complaint::Listener, "apipc: cannot listen at " + path + ": " + std::strerror(errno));
  return {};
}

Accepted acceptPeer(const FileDescriptor& listener) {
  FileDescriptor socket(::accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
  if (!socket) {
    const bool gone = errno == EAGAIN || errno == EINTR || errno == ECONNABORTED;
    return {gone ? Arrival::None : Arrival::NoMeans, {}};
  }
  if (!mayConnect(socket.get())) return {Arrival::None, {}};
  ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &kSendBuffer, sizeof kSendBuffer);
  return {Arrival::Admitted, std::move(socket)};
}

}  // namespace simboard
