// The message service on a board of its own, with peers on real sockets.
#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "apipc_service.h"
#include "platform/apipc.h"
#include "testboard.h"

namespace apipc {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using Bytes = std::vector<unsigned char>;
using Fault = TestBoard::Fault;

constexpr uint32_t kDaemon = 0x010A4200;
constexpr uint32_t kLsd = 0x010A3900;
constexpr uint32_t kVsp = 0x010A3700;
constexpr uint32_t kNamedInHead = 0x01070400;
constexpr std::size_t kHead = 28;

/** A packet from or to `uiId` whose frame has so many bytes and begins with `mark`. */
inline Bytes packet(uint32_t uiId, std::size_t frame, uint32_t mark = 0) {
  Bytes bytes(kHead + frame);
  const auto length = static_cast<uint32_t>(frame);
  std::memcpy(bytes.data(), &uiId, 4);
  std::memcpy(&bytes[24], &length, 4);
  if (frame >= 4) std::memcpy(&bytes[kHead], &mark, 4);
  return bytes;
}

/** The number that a packet begins its frame with. */
inline uint32_t mark(const Bytes& bytes) {
  uint32_t value = 0;
  std::memcpy(&value, &bytes.at(kHead), 4);
  return value;
}

/** Whose packet it is. */
inline uint32_t sender(const Bytes& bytes) {
  uint32_t value = 0;
  std::memcpy(&value, bytes.data(), 4);
  return value;
}

class Client {
 public:
  explicit Client(std::string socketPath)
      : path_(std::move(socketPath)), fd_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
    const timeval wait{10, 0};
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() { disconnect(); }

  bool connect() const {
    sockaddr_un address{AF_UNIX, {}};
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    return ::connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  void disconnect() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }

  bool send(const Bytes& bytes) const {
    return ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }

  /** The next packet; empty when the service has closed the connection, nothing when none comes. */
  std::optional<Bytes> receive() const {
    Bytes bytes(70000);
    const ssize_t length = recv(fd_, bytes.data(), bytes.size(), 0);
    if (length < 0) return errno == ECONNRESET ? std::optional<Bytes>(Bytes{}) : std::nullopt;
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
  }
  bool isClosed() const { return receive() == Bytes{}; }

  /** Says who it is; the answer, 0 when it is turned away. */
  uint32_t join(uint32_t name) const {
    uint32_t task = 0;
    if (!connect() || ::send(fd_, &name, sizeof name, MSG_NOSIGNAL) != sizeof name) return 0;
    return recv(fd_, &task, sizeof task, 0) == sizeof task ? task : 0;
  }

  bool awaitRoom(std::chrono::milliseconds patience) const {
    pollfd room{fd_, POLLOUT, 0};
    return poll(&room, 1, static_cast<int>(patience.count())) == 1;
  }
  /** Sends no more than the socket takes: false when it is full. */
  bool trySend(const Bytes& bytes) const {
    return ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
  }

 private:
  const std::string path_;
  int fd_;
};

class ApipcTest : public testing::Test, public TestBoard {
 protected:
  void SetUp() override {
    takeTime();
    start();
    open();
  }
  void TearDown() override { shut(); }

  void open() {
    ASSERT_EQ(apipc_init(kDaemon, 0), 0);
    waiting_ = std::thread([] {
      apipc_loop_wait(nullptr,
                      [](__apsess_st*, void*, apipc_msg_t message, int) { return apipc_enq(&message); });
    });
  }
  void shut() {
    simboard::apipc_close_all_peers();
    if (waiting_.joinable()) waiting_.join();
  }

  std::string socketPath() const { return file("run/apipc.sock"); }
  Client client() const { return Client(socketPath()); }

  /** The next message as the receiving thread gets it; empty when none comes. */
  static Bytes next(std::chrono::milliseconds patience = 10s) {
    const auto end = steady_clock::now() + patience;
    apipc_msg_t message = nullptr;
    while (apipc_deq(&message) < 0) {
      if (steady_clock::now() >= end) return {};
      apipc_que_wait(static_cast<int>(patience.count()));
    }
    auto* const contents = static_cast<unsigned char*>(apipc_que_attach(message));
    uint32_t frame = 0;
    std::memcpy(&frame, contents + 24, 4);
    Bytes bytes(contents, contents + kHead + frame);
    apipc_que_detach(message, contents);
    return bytes;
  }
  static bool nothingComes() { return next(20ms).empty(); }

  static int send(const Bytes& bytes) {
    return apipc_send(kNamedInHead, bytes.data(), static_cast<unsigned int>(bytes.size()));
  }

  /** Messages that have been queued for the receiving thread since countQueued(). */
  void countQueued() const { fault(Fault::MessageQueue, {0, kEveryCall}); }
  static uint32_t queued() { return kEveryCall - simboard::faultLeft(Fault::MessageQueue).after; }

  template <class Condition>
  static bool eventually(Condition holds) {
    for (const auto end = steady_clock::now() + 10s; steady_clock::now() < end;
         std::this_thread::sleep_for(200us)) {
      if (holds()) return true;
    }
    return false;
  }

 private:
  std::thread waiting_;
};

}  // namespace apipc
