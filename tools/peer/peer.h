// A connection to the daemon's message service, under one service code. For one thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "peer/frame.h"

namespace peer {

using std::chrono::milliseconds;

inline constexpr uint32_t kLsd = 0x0A3900;
inline constexpr uint32_t kVsp = 0x0A3700;
inline constexpr uint32_t kVideod = 0x0A3A00;

// The service code of "lsd", "vsp" or "videod"; nothing for another name.
std::optional<uint32_t> serviceCode(std::string_view name);
// A code that no other running tool of this machine has: several may be connected at once.
uint32_t toolServiceCode();

// One message from the daemon.
struct Message {
  Head head;
  Bytes frame;
};

class Peer {
 public:
  // Connects and says who it is; time-out: how long a connection, a send or a reply may take.
  // Throws Error: NoDaemon (nobody there, or the identity is refused), TimeOut.
  Peer(const std::string& socketPath, uint32_t serviceCode, milliseconds timeout);
  ~Peer();
  Peer(Peer&& other) noexcept;
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  Peer& operator=(Peer&&) = delete;

  // The whole task identifier the service gave: board's card bit and service code.
  uint32_t taskId() const { return taskId_; }

  // Sends a request and waits for its reply, whatever its acknowledge code; pushes that arrive meanwhile are
  // kept for nextPush. The frame's label and the head's label count become the request's number.
  // Throws Error: TimeOut, NoDaemon, ShortReply (the reply is not a frame).
  Frame exchange(Frame request);
  // As exchange; throws Error (Acknowledge) when the daemon refuses.
  Frame request(Frame request);
  // As request; throws Error (ShortReply) when data bytes are missing, (Usage) when the data cannot fit into
  // a frame. `to` carries the addressing of other devices, if any.
  Bytes read(uint32_t address, std::size_t length, Frame to = {});
  void write(uint32_t address, Bytes data, Frame to = {});

  // The next notification; nothing when none came within the time.
  std::optional<Frame> nextPush(milliseconds wait);

  // Below the request level: a frame behind this peer's own head (number: label count; 0 is what pushes
  // have), a packet as it stands, and the next message of any kind.
  void send(std::span<const uint8_t> frame, uint32_t number);
  void sendPacket(std::span<const uint8_t> packet);
  // perhaps: what to add when the connection is closed meanwhile.
  std::optional<Message> receive(milliseconds wait, const char* perhaps = "");

  int descriptor() const { return socket_; }

 private:
  void connectTo(const std::string& socketPath);
  void introduce(uint32_t serviceCode);
  bool await(short events, milliseconds wait) const;

  int socket_ = -1;
  milliseconds timeout_;
  uint32_t taskId_ = 0;
  uint32_t number_ = 0;
  Bytes buffer_;
  std::deque<Message> pushes_;
};

}  // namespace peer
