// The start-up owner: brings the daemon up, holds its threads, sends for everybody and carries out requests.
//
// Tests use it without threads: prepare() does what initialize() does before it starts them, channel() is
// opened and then carries out a request or a tick on the calling thread, queue().workOff() the work that they
// left, and deleteInstance() leaves nothing of it behind.
#pragma once

#include <cstdint>
#include <memory>

#include "mcucmutex.h"
#include "outgoing.h"

namespace ORVE_MCUC {

class FpgaReportThread;
class McuIMDThread;
class McuProcessThread;

class StubUtil final : private Outgoing {
 public:
  static StubUtil* getInstance();
  // Only while none of its threads runs.
  static void deleteInstance();
  ~StubUtil();
  StubUtil(const StubUtil&) = delete;
  StubUtil& operator=(const StubUtil&) = delete;

  // Brings up services and threads in their order. False when a thread could not be started: those after it
  // are not started either.
  bool initialize();
  // All of it but the threads.
  void prepare();

  // Sends an unsolicited message to the task in its processID; any thread. 0 or a channel code.
  int SendMsg(IMD_proto3rd message);
  // Queues a work item, which the queue then owns; any thread. 0, or kRefused with the item gone.
  int addMessageToList(MCUProcessDataBlock* item);

  McuIMDThread& channel() { return *m_McuIMDThreadPtr; }
  McuProcessThread& queue() { return *m_McuProcessThreadPtr; }
  FpgaReportThread& report() { return *m_FpgaReportThreadPtr; }

  // Carries out one request and replies; on the receive thread. The result of the routing, -1 for none.
  int onDataRecvFromIMDNew(IMD_proto3rd* request);
  // Logs a request that names another destination. True: such requests are carried out all the same.
  bool checkSelfDeviceRequestNew(IMD_proto3rd* request);

  // Publishes the version in the environment store: 0, -1 when the store does not open.
  int SetEnvParlendVerToRootfs();
  void SetParlendVersion(const char* version);

 private:
  StubUtil();
  int send(IMD_proto3rd message) override;
  int queue(std::unique_ptr<MCUProcessDataBlock> item) override;
  bool creatIMDComm();
  bool creatProcess();
  bool creatFpgaReport();
  // Routes a request. What the requester cannot see from its reply is logged: a refusal with acknowledge 0.
  int carryOut(IMD_proto3rd& request);
  int route(IMD_proto3rd* request);

  std::shared_ptr<McuIMDThread> m_McuIMDThreadPtr;
  std::shared_ptr<McuProcessThread> m_McuProcessThreadPtr;
  std::shared_ptr<FpgaReportThread> m_FpgaReportThreadPtr;
  CMutexThread m_stubMenux;            // held from the routing of a request until its reply is sent
  const uint8_t m_DeviceSequseID = 0;  // the destination address that this daemon answers to
};

}  // namespace ORVE_MCUC
