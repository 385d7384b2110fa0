#include "peer/peer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "peer/error.h"

namespace peer {

namespace {

using Clock = std::chrono::steady_clock;

struct NamedCode {
  std::string_view name;
  uint32_t code;
};
constexpr std::array<NamedCode, 3> kServices{{{"lsd", kLsd}, {"vsp", kVsp}, {"videod", kVideod}}};
constexpr uint32_t kFirstToolCode = 0x0A7000;

milliseconds left(Clock::time_point deadline) {
  const auto rest = std::chrono::ceil<milliseconds>(deadline - Clock::now());
  return std::max(rest, milliseconds::zero());
}

std::string hexAddress(uint32_t address) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", address);
  return text.data();
}

[[noreturn]] void closedByService(const char* perhaps = "") {
  throw Error(Failure::NoDaemon, std::string("the daemon closed the connection") + perhaps);
}

}  // namespace

std::optional<uint32_t> serviceCode(std::string_view name) {
  const auto* hit = std::find_if(kServices.begin(), kServices.end(),
                                 [&](const NamedCode& service) { return service.name == name; });
  if (hit == kServices.end()) return std::nullopt;
  return hit->code;
}

uint32_t toolServiceCode() {
  return kFirstToolCode + (static_cast<uint32_t>(getpid()) & 0xFFF);
}

Peer::Peer(const std::string& socketPath, uint32_t serviceCode, milliseconds timeout)
    : timeout_(timeout), buffer_(kHeadSize + kMaxFrame) {
  socket_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (socket_ < 0) failWithErrno(Failure::NoDaemon, "no socket");
  try {
    connectTo(socketPath);
    introduce(serviceCode);
  } catch (...) {
    close(socket_);
    throw;
  }
}

Peer::~Peer() {
  if (socket_ >= 0) close(socket_);
}

Peer::Peer(Peer&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)),
      timeout_(other.timeout_),
      taskId_(other.taskId_),
      number_(other.number_),
      buffer_(std::move(other.buffer_)),
      pushes_(std::move(other.pushes_)) {}

void Peer::connectTo(const std::string& socketPath) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (socketPath.size() >= sizeof address.sun_path)
    throw Error(Failure::Usage, "the socket's path is longer than the system allows: " + socketPath);
  socketPath.copy(address.sun_path, socketPath.size());
  const auto deadline = Clock::now() + timeout_;
  while (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    if (errno == EINTR) continue;
    if (errno == EACCES || errno == EPERM)
      failWithErrno(Failure::NoDaemon, "only the daemon's own user and root may connect to " + socketPath);
    if (errno != EAGAIN) failWithErrno(Failure::NoDaemon, "no daemon at " + socketPath);
    if (left(deadline) == milliseconds::zero())
      throw Error(Failure::TimeOut, "the daemon at " + socketPath + " does not take the connection");
    poll(nullptr, 0, 1);  // the queue of connections is full, and nothing tells when it is not
  }
}

void Peer::introduce(uint32_t serviceCode) {
  const std::array<uint8_t, 4> code{static_cast<uint8_t>(serviceCode), static_cast<uint8_t>(serviceCode >> 8),
                                    static_cast<uint8_t>(serviceCode >> 16), 0};
  sendPacket(code);
  if (!await(POLLIN, timeout_)) throw Error(Failure::TimeOut, "the message service does not answer");
  std::array<uint8_t, 4> id{};
  const ssize_t got = recv(socket_, id.data(), id.size(), 0);
  if (got != static_cast<ssize_t>(id.size()))
    throw Error(Failure::NoDaemon,
                "the message service refuses service code " + hexAddress(serviceCode) +
                    ": another connection holds it, the service is full, or this user may not connect");
  for (unsigned i = 4; i-- > 0;) taskId_ = taskId_ << 8 | id[i];
}

bool Peer::await(short events, milliseconds wait) const {
  const auto deadline = Clock::now() + wait;
  pollfd entry{.fd = socket_, .events = events, .revents = 0};
  for (;;) {
    const int ready = poll(&entry, 1, static_cast<int>(left(deadline).count()));
    if (ready > 0) return true;
    if (ready == 0) return false;
    if (errno != EINTR) failWithErrno(Failure::NoDaemon, "waiting for the daemon");
  }
}

void Peer::sendPacket(std::span<const uint8_t> packet) {
  for (;;) {
    if (::send(socket_, packet.data(), packet.size(), MSG_NOSIGNAL) >= 0) return;
    if (errno == EINTR) continue;
    if (errno == EPIPE || errno == ECONNRESET) closedByService();
    if (errno != EAGAIN) failWithErrno(Failure::NoDaemon, "sending to the daemon");
    if (!await(POLLOUT, timeout_)) throw Error(Failure::TimeOut, "the daemon takes no more messages");
  }
}

void Peer::send(std::span<const uint8_t> frame, uint32_t number) {
  Bytes packet = encode(
      Head{.taskId = taskId_, .labelCount = number, .frameLength = static_cast<uint32_t>(frame.size())});
  packet.insert(packet.end(), frame.begin(), frame.end());
  sendPacket(packet);
}

std::optional<Message> Peer::receive(milliseconds wait, const char* perhaps) {
  if (!await(POLLIN, wait)) return std::nullopt;
  const ssize_t got = recv(socket_, buffer_.data(), buffer_.size(), 0);
  if (got == 0 || (got < 0 && errno == ECONNRESET)) closedByService(perhaps);
  if (got < 0) failWithErrno(Failure::NoDaemon, "receiving from the daemon");
  const auto packet = std::span(buffer_).first(static_cast<std::size_t>(got));
  Message message{decodeHead(packet), {}};
  const auto frame = packet.subspan(kHeadSize);
  message.frame.assign(frame.begin(), frame.end());
  return message;
}

Frame Peer::exchange(Frame request) {
  const char* perhaps = request.code == kWrite ? "; the write may have been carried out" : "";
  ++number_;
  request.label = static_cast<uint8_t>(number_);
  send(encode(request), number_);
  const auto deadline = Clock::now() + timeout_;
  while (auto message = receive(left(deadline), perhaps)) {
    if (message->head.labelCount == number_) return decode(message->frame);
    if (message->head.labelCount == 0) pushes_.push_back(std::move(*message));
    // Anything else is the late reply to a request that was given up.
  }
  throw Error(Failure::TimeOut, "no reply to the request at " + hexAddress(request.address) + " within " +
                                    std::to_string(timeout_.count()) + " ms" + perhaps);
}

Frame Peer::request(Frame request) {
  Frame reply = exchange(std::move(request));
  if (reply.ack == 0) return reply;
  throw Error(Failure::Acknowledge, hexAddress(reply.address) + ": " + ackText(reply.ack) +
                                        " (acknowledge code " + std::to_string(reply.ack) + ")");
}

Bytes Peer::read(uint32_t address, std::size_t length, Frame to) {
  if (length > kMaxData)
    throw Error(Failure::Usage, "a read takes at most " + std::to_string(kMaxData) + " bytes");
  to.code = kRead;
  to.address = address;
  to.length = static_cast<uint16_t>(length);
  Frame reply = request(std::move(to));
  if (reply.data.size() < length)
    throw Error(Failure::ShortReply, "short reply at " + hexAddress(address) + ": " +
                                         std::to_string(reply.data.size()) + " of " + std::to_string(length) +
                                         " bytes");
  return std::move(reply.data);
}

void Peer::write(uint32_t address, Bytes data, Frame to) {
  if (data.size() > kMaxData)
    throw Error(Failure::Usage, "a write carries at most " + std::to_string(kMaxData) + " bytes");
  to.code = kWrite;
  to.address = address;
  to.length = static_cast<uint16_t>(data.size());
  to.data = std::move(data);
  request(std::move(to));
}

std::optional<Frame> Peer::nextPush(milliseconds wait) {
  if (!pushes_.empty()) {
    const Message message = std::move(pushes_.front());
    pushes_.pop_front();
    return decode(message.frame);
  }
  const auto deadline = Clock::now() + wait;
  while (const auto message = receive(left(deadline)))
    if (message->head.labelCount == 0) return decode(message->frame);
  return std::nullopt;
}

}  // namespace peer
