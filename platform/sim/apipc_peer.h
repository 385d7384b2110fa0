// The connected peers: who they are, and sending to them.
#ifndef PLATFORM_SIM_APIPC_PEER_H
#define PLATFORM_SIM_APIPC_PEER_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "apipc_fd.h"
#include "apipc_outgoing.h"
#include "apipc_packet.h"
#include "platform/apipc.h"

/* A connection. Its socket stays open as long as somebody holds the record; closed() says whether it still
 * counts. */
struct __apsess_st {
 public:
  __apsess_st(simboard::FileDescriptor socket, simboard::OutgoingRoom& room, simboard::SteadyTime nameBy)
      : socket_(std::move(socket)), nameBy_(nameBy), outgoing_(socket_.get(), room, this) {}

  int fd() const { return socket_.get(); }

  /** When a connection that has not said who it is is closed. */
  simboard::SteadyTime nameBy() const { return nameBy_; }

  /** What it is sent. */
  simboard::Outgoing& outgoing() { return outgoing_; }

  /** Ends the connection for both sides. Any thread. */
  void shutDown();
  bool closed() const { return closed_.load(std::memory_order_acquire); }

  /** True when the other side has closed, even if what it sent before is not read yet. */
  bool hungUp() const;

  // Of the waiting thread.
  bool greeted = false;                  // it has said who it is
  bool stopped = false;                  // it is not read from until there is room
  std::shared_ptr<simboard::Lane> lane;  // what it sends; once it has said who it is

  // Written by the waiting thread under the directory's lock, read by others under that lock.
  uint32_t task = 0;
  uint64_t number = 0;
  bool reachable = false;

 private:
  const simboard::FileDescriptor socket_;
  const simboard::SteadyTime nameBy_;
  std::atomic<bool> closed_{false};
  simboard::Outgoing outgoing_;
};

namespace simboard {

using Peer = __apsess_st;

/** All connections. Only the waiting thread changes it; any thread may look somebody up. */
class PeerDirectory {
 public:
  using List = std::vector<std::shared_ptr<Peer>>;

  void add(std::shared_ptr<Peer> peer);
  void remove(const Peer& peer);

  /** Gives a connection its name and tells it so, before anybody can send to it. False: another live
   * connection holds the name, or the answer could not be sent. */
  bool welcome(Peer& peer, uint32_t task);

  /** The connection of that task; null if there is none. */
  std::shared_ptr<Peer> find(uint32_t task) const;

  /** Shuts all connections down; they stay listed until they are removed. Any thread. */
  void shutDownAll() const;

  /** In the order of their arrival. For the waiting thread only. */
  const List& all() const { return peers_; }

 private:
  std::shared_ptr<Peer> findLocked(uint32_t task) const;

  mutable std::mutex lock_;
  List peers_;
};

}  // namespace simboard

#endif
