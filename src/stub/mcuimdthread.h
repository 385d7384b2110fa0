// The message channel: receives requests, sends replies and notifications, and runs the 200 ms tick. Three
// threads; SendMsg and ReplyMsgNew may be called from any.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/apipc.h"
#include "stub/mcucmessagestruct.h"

namespace ORVE_MCUC {

class McuIMDThread {
 public:
  McuIMDThread();
  McuIMDThread(const McuIMDThread&) = delete;
  McuIMDThread& operator=(const McuIMDThread&) = delete;
  ~McuIMDThread() { Release(); }

  // From here on notifications are sent; until then there is nobody to take them.
  void open() { m_ready.store(true, std::memory_order_release); }
  // Opens the channel and starts the three threads: 0, or kErrThread with the later ones not started.
  int Init();
  // Asks all three threads to end.
  int Release();

  // Replies to a request from its own record: 0, kErrEncode or kErrSend.
  int ReplyMsgNew(IMD_proto3rd* request);
  // Sends an unsolicited message to the task in its processID: the same codes.
  int SendMsgNew(IMD_proto3rd* message);
  int SendMsg(IMD_proto3rd message);

  // Thread bodies.
  void ApipcMsg();
  void RecvMsg();
  void FlagMsg();

  // Takes messages one at a time until something is wrong with one: kErrNoMessage.
  int ipc_event_deal_th();
  // Takes the oldest message and handles it to the end, or waits a while for one. kErrNoMessage when
  // something is wrong with it or nothing may be answered, else 0.
  int takeMessage();
  // Checks, decodes and carries out one frame of label->size bytes. kErrNoMessage without a frame, else 0.
  int dealDataBlockNew(const Fipc_msg_head* head, const Fimd_label* label, const unsigned char* frame);

  // 0 when the device has loaded the FPGA.
  int CheckFPGAOnline();
  // The flag and status thread's work once the FPGA has been loaded: restores it, then announces the daemon.
  void bringUp();
  // One step of its periodic work.
  void tick();
  // Notices that LSD has gone or connected anew, and has everything pushed to a new connection.
  void LsdApipcConnHandler();
  // Starts the screen mapping once no submission has come for a whole tick.
  void CalculateSenderParaHandler();

 private:
  // One of the channel's threads.
  struct Worker {
    pthread_t id{};
    pthread_t handle{};
    std::atomic<bool> exit{false};
  };
  int CreateThread(Worker& worker, void* (*entry)(void*));
  void step();
  void watchStatus();
  void rememberPeer(uint32_t uiid);

  static constexpr std::size_t kPeersRemembered = 1024;

  Worker m_apipc;
  Worker m_recv;
  Worker m_flag;
  std::atomic<bool> m_ready{false};
  uint64_t m_lsdConnection = 0;         // number of the connection that is told; flag and status thread only
  std::vector<uint32_t> m_vectorUIIDs;  // peers seen so far; receive thread only
};

}  // namespace ORVE_MCUC
