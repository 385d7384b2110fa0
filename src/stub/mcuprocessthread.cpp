// The lower half of the work queue: who adds, and who is refused.
#include "stub/mcuprocessthread.h"

#include "mcuctrace.h"
#include "results.h"
#include "threadstart.h"
#include "workending.h"

namespace ORVE_MCUC {

McuProcessThread::~McuProcessThread() {
  UnInit();
  setWorkEnding(false);  // for the next queue's
}

int McuProcessThread::Init() {
  return CreateThread();
}

int McuProcessThread::CreateThread() {
  expectThread();
  const int result = startDetachedThread("McuProcessThread::", &ThreadProc, this, m_dwMcuProcessThreadID);
  m_hMcuProcessThread = m_dwMcuProcessThreadID;
  if (result != 0) giveUp();
  return result;
}

void McuProcessThread::expectThread() {
  const Lock lock(m_processLstMenux);
  m_threadRuns = true;
}

int McuProcessThread::Release() {
  setWorkEnding(true);
  const Lock lock(m_processLstMenux);
  m_bExitMcuProcessThread = true;
  m_turn.notify_all();
  m_work.notify_all();
  return 0;
}

void McuProcessThread::giveUp() {
  Release();
  const Lock lock(m_processLstMenux);
  if (m_messageList.empty()) return;
  PARLEND_TRACE(kError) << "=== CreateThread ===" << m_messageList.size() << " queued items are lost.";
  m_messageList.clear();
}

int McuProcessThread::addMessageToList(MCUProcessDataBlock* item) {
  Items one;  // its memory is asked for while nobody waits for it
  {
    std::unique_ptr<MCUProcessDataBlock> owned(item);
    one.push_back(std::move(owned));
  }
  PARLEND_TRACE(kDebug) << " <<<<<<<<<<<< Add apipc data list Begin >>>>>>>>>>>>";
  Lock lock(m_processLstMenux);
  PARLEND_TRACE(kDebug) << " <<<<<<<<<<<< Add apipc data list Lock   >>>>>>>>>>>>";
  const bool added = waitForTurn(lock);
  if (added) m_messageList.splice(m_messageList.end(), one);
  PARLEND_TRACE(kDebug) << " <<<<<<<<<<<< Add apipc data list UnLock   >>>>>>>>>>>>";
  m_work.notify_all();
  lock.unlock();
  if (added) return kDone;
  PARLEND_TRACE(kError) << "=== addMessageToList ===no thread works the queue off, the item is refused.";
  return kRefused;
}

std::size_t McuProcessThread::producersWaiting() {
  const Lock lock(m_processLstMenux);
  return m_producers;
}

bool McuProcessThread::waitForTurn(Lock& lock) {
  if (isHandler()) return !m_bExitMcuProcessThread;
  ++m_producers;
  m_turn.wait(lock, [this] {
    const bool mayGoIn = hasRoom() ? isIdle() || m_admitting : !m_threadRuns;
    return m_bExitMcuProcessThread || mayGoIn;
  });
  --m_producers;
  m_admitting = false;
  return !m_bExitMcuProcessThread && hasRoom();
}

}  // namespace ORVE_MCUC
