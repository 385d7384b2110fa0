// The upper half of the work queue: it knows the dispatcher.
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "stub/mcuprocessthread.h"

namespace ORVE_MCUC {

void* McuProcessThread::ThreadProc(void* self) {
  static_cast<McuProcessThread*>(self)->doProcess();
  return nullptr;
}

void McuProcessThread::doProcess() {
  PARLEND_TRACE(kDebug) << "doProcess process thread begin:";
  int seen = 0;
  while (!m_bExitMcuProcessThread.load()) {
    m_signals.wait(seen);
    seen = m_signals.load();
    while (!m_bExitMcuProcessThread.load() && processOldest()) admitProducers();
  }
  PARLEND_TRACE(kDebug) << "doProcess process thread exit.";
}

bool McuProcessThread::processOldest() {
  CMutexGuardT<CMutexThreadRecursive> guard(m_processLstMenux);
  if (m_messageList.empty()) return false;
  if (MCUProcessDataBlock* item = m_messageList.front().get())
    Tprocess_ctl::getInstance()->onProcessDealwith(item);
  m_messageList.pop_front();
  return true;
}

// A released mutex goes to whoever runs, which is this thread: without this step a producer would wait until
// the queue is empty, not until the running handler returns.
void McuProcessThread::admitProducers() {
  if (const int waiting = m_producers.load()) m_producers.wait(waiting);
}

}  // namespace ORVE_MCUC
