// The deferred work queue and the one thread that works it off. addMessageToList may be called from any
// thread, handlers included; items wait until the thread runs.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>

#include "mcucmutex.h"
#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {

class McuProcessThread {
 public:
  McuProcessThread() = default;
  McuProcessThread(const McuProcessThread&) = delete;
  McuProcessThread& operator=(const McuProcessThread&) = delete;
  ~McuProcessThread();

  // Starts the thread: 0, or kErrThread.
  int Init();
  int CreateThread();
  // Ask the thread to end; it does so after the item it works on.
  int Release();
  void UnInit() { Release(); }
  static int CloseAllSessions() { return 0; }
  int GetStatus() const { return m_iStatus; }

  // Appends an item, which the queue owns from here on. Waits while a handler runs on another thread.
  void addMessageToList(MCUProcessDataBlock* item);

  // The thread's body: hands the oldest item to the dispatcher, holding the queue lock, until Release().
  void doProcess();

 private:
  static void* ThreadProc(void* self);
  // Handles the oldest item, holding the queue lock. False: the queue was empty.
  bool processOldest();
  // Lets a producer that waits for the lock have it before the next item is taken.
  void admitProducers();

  pthread_t m_dwMcuProcessThreadID{};
  pthread_t m_hMcuProcessThread{};
  std::atomic<bool> m_bExitMcuProcessThread{false};
  int32_t m_iStatus = 0;
  CMutexThreadRecursive m_processLstMenux;
  std::list<std::unique_ptr<MCUProcessDataBlock>> m_messageList;
  std::atomic<int> m_signals{0};  // additions and exit requests, counted; the idle thread waits for a change
  std::atomic<int> m_producers{0};  // threads that are appending right now
};

}  // namespace ORVE_MCUC
