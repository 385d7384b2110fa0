#include "peer.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "rounds.h"

namespace bench {
namespace {

constexpr double kConnectLimitUs = 10e6;
constexpr useconds_t kConnectPauseUs = 50;

int connectTo(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) throw std::runtime_error("socket path too long: " + name);
  std::memcpy(address.sun_path, name.c_str(), name.size() + 1);
  const double start = nowUs();
  while (nowUs() - start < kConnectLimitUs) {
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
    close(fd);
    usleep(kConnectPauseUs);
  }
  throw std::runtime_error("nobody listens at " + name);
}

}  // namespace

Peer::Peer(const std::filesystem::path& socket, uint32_t service, uint32_t address)
    : socket_(connectTo(socket)) {
  uint32_t task = service;
  timeval limit{.tv_sec = 10, .tv_usec = 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  if (send(socket_, &task, sizeof task, MSG_NOSIGNAL) != sizeof task ||
      recv(socket_, &task, sizeof task, 0) != sizeof task) {
    close(socket_);
    throw std::runtime_error("the peer was refused");
  }
  request_ = readRequest(task, address);
}

Peer::~Peer() {
  close(socket_);
}

void Peer::roundTrip() {
  std::array<unsigned char, 256> reply;
  if (send(socket_, request_.data(), request_.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request_.size()))
    throw std::runtime_error("a request could not be sent");
  if (recv(socket_, reply.data(), reply.size(), 0) != static_cast<ssize_t>(kReplySize))
    throw std::runtime_error("a reply is missing or has the wrong length");
}

double Peer::medianTrip(int count) {
  std::vector<double> trips;
  trips.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const double start = nowUs();
    roundTrip();
    trips.push_back(nowUs() - start);
  }
  return median(trips);
}

}  // namespace bench
