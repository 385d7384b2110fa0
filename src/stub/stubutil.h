// The start-up owner: brings the daemon up, holds its threads, sends for everybody and carries out requests.
#pragma once

#include <cstdint>
#include <memory>

#include "mcucmutex.h"
#include "stub/mcucmessagestruct.h"
#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {

class FpgaReportThread;
class McuIMDThread;
class McuProcessThread;

class StubUtil {
 public:
  static StubUtil* getInstance();
  ~StubUtil();
  StubUtil(const StubUtil&) = delete;
  StubUtil& operator=(const StubUtil&) = delete;

  // Brings up services and threads in their order. False when a thread could not be started: those after it
  // are not started either.
  bool initialize();

  // Sends an unsolicited message to the task in its processID; any thread. 0 or a channel code.
  int SendMsg(IMD_proto3rd message);
  // Queues a work item, which the queue then owns; any thread. Items wait until the work thread runs.
  void addMessageToList(MCUProcessDataBlock* item);

  // Carries out one request and replies; on the receive thread. The result of the routing, -1 for none.
  int onDataRecvFromIMDNew(IMD_proto3rd* request);
  // Logs a request that names another destination. True: such requests are carried out all the same.
  bool checkSelfDeviceRequestNew(IMD_proto3rd* request);

  // Publishes the version in the environment store: 0, -1 when the store does not open.
  int SetEnvParlendVerToRootfs();
  void SetParlendVersion(const char* version);

 private:
  StubUtil();
  bool creatIMDComm();
  bool creatProcess();
  bool creatFpgaReport();
  int route(IMD_proto3rd* request);

  std::shared_ptr<McuIMDThread> m_McuIMDThreadPtr;
  std::shared_ptr<McuProcessThread> m_McuProcessThreadPtr;
  std::shared_ptr<FpgaReportThread> m_FpgaReportThreadPtr;
  CMutexThread m_stubMenux;            // held from the routing of a request until its reply is sent
  const uint8_t m_DeviceSequseID = 0;  // the destination address that this daemon answers to
};

}  // namespace ORVE_MCUC
