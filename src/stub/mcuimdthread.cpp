#include "stub/mcuimdthread.h"

#include "mcuctrace.h"
#include "taskid.h"
#include "threadstart.h"

namespace ORVE_MCUC {
namespace {

template <void (McuIMDThread::*Body)()>
void* threadProc(void* self) {
  (static_cast<McuIMDThread*>(self)->*Body)();
  return nullptr;
}

}  // namespace

McuIMDThread::McuIMDThread() {
  m_vectorUIIDs.reserve(kPeersRemembered);
  m_vectorUIIDs.push_back(taskOf(kServiceLsd));
}

int McuIMDThread::Init() {
  PARLEND_TRACE(kInfo) << "McuIMDThread: Init apipc, result = " << 0 << " type = "
                       << "parlend";
  open();
  if (const int failed = CreateThread(m_apipc, &threadProc<&McuIMDThread::ApipcMsg>)) return failed;
  if (const int failed = CreateThread(m_recv, &threadProc<&McuIMDThread::RecvMsg>)) return failed;
  return CreateThread(m_flag, &threadProc<&McuIMDThread::FlagMsg>);
}

int McuIMDThread::CreateThread(Worker& worker, void* (*entry)(void*)) {
  const int result = startDetachedThread("===  ===McuIMDThread: ", entry, this, worker.id);
  worker.handle = worker.id;
  return result;
}

int McuIMDThread::Release() {
  for (Worker* worker : {&m_apipc, &m_recv, &m_flag}) worker->exit.store(true);
  return 0;
}

}  // namespace ORVE_MCUC
