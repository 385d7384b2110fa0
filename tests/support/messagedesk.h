// The message service in the hands of a test: it stands in for the board's in programs that link it. Nobody
// has to connect over a socket, and no thread waits for anybody.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace messagedesk {

/** A message as it was sent: head, label, frame. */
struct Sent {
  uint32_t task;  // the task that it arrived at
  std::vector<uint8_t> bytes;
};

/** A peer comes under a whole task identifier, or goes. */
void connect(uint32_t task);
void disconnect(uint32_t task);

/** A message waits for the daemon to take it. */
void arrive(std::span<const uint8_t> message);
/** How many still do. */
std::size_t waiting();

/** What happens while the daemon waits for messages, on the thread that waits; clear() forgets it. */
void onWait(std::function<void()> then);

/** What was sent since the last call, in order. */
std::vector<Sent> takeSent();

/** Nobody is connected and nothing waits. */
void clear();

}  // namespace messagedesk
