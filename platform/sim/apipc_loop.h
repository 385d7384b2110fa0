// The message service: one thread waits in it for peers and their packets, one takes messages out, all send.
#ifndef PLATFORM_SIM_APIPC_LOOP_H
#define PLATFORM_SIM_APIPC_LOOP_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>

#include "apipc_batch.h"
#include "apipc_fd.h"
#include "apipc_listener.h"
#include "apipc_load.h"
#include "apipc_outgoing.h"
#include "apipc_packet.h"
#include "apipc_peer.h"
#include "apipc_queue.h"
#include "platform/apipc.h"

namespace simboard {

class MessageService {
 public:
  static constexpr uint32_t kMostOfFloods = 12 << 20;

  /** Listens at the path under the task identifier `self`; its top byte is the card bit of all peers. */
  MessageService(const std::string& path, uint32_t self);

  /** False: it could not be set up; standard error says why. */
  bool ready() const { return ready_; }
  bool closed() const { return closed_.load(); }

  // Of the waiting thread.
  int wait(void* context, apipc_recv_cb callback);
  bool enqueue(Message* message);

  // Of the receiving thread.
  MessageQueue& queue() { return queue_; }
  void release(Message* message);

  // Of any thread.
  bool send(uint32_t task, std::span<const unsigned char> packet);
  /** The number of that task's connection, given once in the life of the process; 0: it has none. */
  uint64_t connection(uint32_t task) const;
  void timeMoved() const { signal(); }
  void close();

 private:
  struct Receiver {
    void* context;
    apipc_recv_cb callback;
  };

  // The waiting thread's turn.
  void handleEvent(void* tag, const Receiver& receiver);
  void sweep();
  void flushOutgoing();
  void turnEverybodyOut();
  SteadyTime nextDeadline() const;
  int pauseMs() const;
  void handleDeadlines();
  bool watch(int fd, void* tag) const;
  void unwatch(int fd) const;

  // Connections coming and going.
  void acceptOne();
  void admit(FileDescriptor socket);
  void greet(Peer& peer);
  void remove(Peer& peer);
  std::shared_ptr<Lane> laneOf(uint32_t task);
  SteadyTime greetingDeadline() const;
  void closeSilentPeers(SteadyTime now);

  // Packets.
  void readFrom(Peer& peer, const Receiver& receiver);
  void takePacket(Peer& peer, int index, const Receiver& receiver);
  unsigned int packetsThatFit(const Peer& peer) const;
  bool mayResume(const Peer& peer) const;
  bool hasPredecessor(const Peer& peer) const;
  void stopReading(Peer& peer);
  void resumeReading(Peer& peer);

  void signal() const;

  const uint32_t self_;
  FileDescriptor epoll_;
  FileDescriptor signal_;  // an eventfd: there is room again, or a connection was shut down
  FileDescriptor listener_;
  bool ready_ = false;
  std::atomic<bool> closed_{false};

  OutgoingRoom outgoing_;
  PeerDirectory peers_;
  std::map<uint32_t, std::weak_ptr<Lane>> lanes_;
  std::size_t nameless_ = 0;  // connections that have not said who they are
  SteadyTime listenAgainAt_ = kNever;
  bool sweepDue_ = false;

  PacketBatch batch_;
  DropReport drops_;
  Message* offered_ = nullptr;  // given to the callback and not queued yet

  MessageQueue queue_;
  Load load_;
  std::atomic<bool> anyStopped_{false};
  uint32_t highestLoad_ = 0;  // since memory last went back to the system; of the receiving thread
};

}  // namespace simboard

#endif
