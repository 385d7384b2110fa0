#include "stub/mcuprocessthread.h"

#include "mcuctrace.h"
#include "threadstart.h"

namespace ORVE_MCUC {

McuProcessThread::~McuProcessThread() {
  UnInit();
}

int McuProcessThread::Init() {
  return CreateThread();
}

int McuProcessThread::CreateThread() {
  const int result = startDetachedThread("McuProcessThread::", &ThreadProc, this, m_dwMcuProcessThreadID);
  m_hMcuProcessThread = m_dwMcuProcessThreadID;
  return result;
}

int McuProcessThread::Release() {
  m_bExitMcuProcessThread.store(true);
  m_signals.fetch_add(1);
  m_signals.notify_all();
  return 0;
}

void McuProcessThread::addMessageToList(MCUProcessDataBlock* item) {
  std::unique_ptr<MCUProcessDataBlock> owned(item);
  PARLEND_TRACE(kDebug) << " <<<<<<<<<<<< Add apipc data list Begin >>>>>>>>>>>>";
  m_producers.fetch_add(1);
  {
    CMutexGuardT<CMutexThreadRecursive> guard(m_processLstMenux);
    PARLEND_TRACE(kDebug) << " <<<<<<<<<<<< Add apipc data list Lock   >>>>>>>>>>>>";
    m_messageList.push_back(std::move(owned));
    PARLEND_TRACE(kDebug) << " <<<<<<<<<<<< Add apipc data list UnLock   >>>>>>>>>>>>";
  }
  m_producers.fetch_sub(1);
  m_producers.notify_one();
  m_signals.fetch_add(1);
  m_signals.notify_one();
}

}  // namespace ORVE_MCUC
