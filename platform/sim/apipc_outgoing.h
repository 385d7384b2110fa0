// What is sent to peers and their sockets do not take yet. Any thread sends; nobody waits for a reader.
#ifndef PLATFORM_SIM_APIPC_OUTGOING_H
#define PLATFORM_SIM_APIPC_OUTGOING_H

#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>

#include "apipc_fd.h"
#include "apipc_queue.h"

namespace simboard {

enum class SendResult {
  Sent,    // or kept until the socket takes it
  Failed,  // the connection is gone, or there is no memory
  TooMuch  // the peer reads too slowly for what it is sent
};

/** What all peers share: the room for waiting packets, and the watch for sockets that have room again. */
class OutgoingRoom {
 public:
  OutgoingRoom();

  bool take(uint32_t weight);
  void give(uint32_t weight) { taken_.fetch_sub(weight, std::memory_order_relaxed); }

  /** Readable while a watched socket takes a packet. */
  int fd() const { return epoll_.get(); }
  bool watch(int socket, void* tag) const;
  void unwatch(int socket) const;

 private:
  FileDescriptor epoll_;
  std::atomic<uint32_t> taken_{0};
};

/** The packets that wait for one peer, in their order. */
class Outgoing {
 public:
  /** The socket and the room must outlive it; `tag` is what the room's watch tells of it. */
  Outgoing(int socket, OutgoingRoom& room, void* tag) : socket_(socket), room_(room), tag_(tag) {}
  ~Outgoing() { close(); }
  Outgoing(const Outgoing&) = delete;
  Outgoing& operator=(const Outgoing&) = delete;

  SendResult send(std::span<const unsigned char> packet);

  /** Sends some of what the socket takes by now; it is watched as long as anything is left. False: the
   * connection is gone. */
  bool flush();

  /** Drops what waits; everything that is sent from now on fails. */
  void close();

 private:
  SendResult keep(std::span<const unsigned char> packet);
  void dropFirst();

  const int socket_;
  OutgoingRoom& room_;
  void* const tag_;

  std::mutex lock_;  // of what follows; held over calls that do not block
  Message* first_ = nullptr;
  Message* last_ = nullptr;
  uint32_t weight_ = 0;
  bool closed_ = false;
};

}  // namespace simboard

#endif
