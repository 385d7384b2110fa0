// The upper half of the work queue: it knows the dispatcher.
#include "mcuctrace.h"
#include "outofmemory.h"
#include "process/tprocess_ctl.h"
#include "stub/mcuprocessthread.h"

namespace ORVE_MCUC {
namespace {

// The queue whose handler this thread is running.
thread_local constinit const McuProcessThread* t_handlerOf = nullptr;

}  // namespace

void* McuProcessThread::ThreadProc(void* self) {
  static_cast<McuProcessThread*>(self)->doProcess();
  return nullptr;
}

void McuProcessThread::doProcess() {
  PARLEND_TRACE(kDebug) << "doProcess process thread begin:";
  expectThread();
  Lock lock(m_processLstMenux);
  while (!m_bExitMcuProcessThread) {
    m_work.wait(lock, [this] { return m_bExitMcuProcessThread || !m_messageList.empty(); });
    handleAll(lock);
  }
  lock.unlock();
  PARLEND_TRACE(kDebug) << "doProcess process thread exit.";
}

std::size_t McuProcessThread::workOff() {
  Lock lock(m_processLstMenux);
  return handleAll(lock);
}

std::size_t McuProcessThread::handleAll(Lock& lock) {
  std::size_t handled = 0;
  m_busy = true;
  for (; !m_bExitMcuProcessThread && !m_messageList.empty(); ++handled) {
    handleOldest(lock);
    admitOne(lock);
  }
  m_busy = false;
  m_turn.notify_all();
  return handled;
}

void McuProcessThread::handleOldest(Lock& lock) {
  MCUProcessDataBlock* item = m_messageList.front().get();
  lock.unlock();
  if (item != nullptr) {
    t_handlerOf = this;
    withinMemory("doProcess", [item] { Tprocess_ctl::getInstance()->onProcessDealwith(item); });
    t_handlerOf = nullptr;
  }
  lock.lock();
  m_messageList.pop_front();
}

void McuProcessThread::admitOne(Lock& lock) {
  if (m_producers == 0 || !hasRoom()) return;
  m_admitting = true;
  m_turn.notify_all();
  m_work.wait(lock, [this] { return m_bExitMcuProcessThread || !m_admitting; });
  m_admitting = false;
}

bool McuProcessThread::isHandler() const {
  return t_handlerOf == this;
}

}  // namespace ORVE_MCUC
