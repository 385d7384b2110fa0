// The deferred work queue and the one thread that works it off. addMessageToList may be called from any
// thread, handlers included.
//
// Whoever adds waits until the running handler has returned and until there is room; a handler's own items
// wait for neither. Between two items the thread lets in one of those who wait, and only one: so a producer
// gets in however many items there are, and a producer that never pauses does not keep the thread from its
// items. For the same reason nobody adds to items that the thread has been woken for and has not yet begun:
// whatever stands in the queue then stays there as long as the pressure lasts, before everybody's next item.
#pragma once

#include <pthread.h>

#include <condition_variable>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>

#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {

class McuProcessThread {
 public:
  static constexpr std::size_t kMostItems = 256;

  McuProcessThread() = default;
  McuProcessThread(const McuProcessThread&) = delete;
  McuProcessThread& operator=(const McuProcessThread&) = delete;
  ~McuProcessThread();

  // Starts the thread: 0, or kErrThread, after which every item is refused.
  int Init();
  int CreateThread();
  // Asks the thread to end, which it does after the item it works on. Whoever waits is refused, and so is
  // every later item.
  int Release();
  void UnInit() { Release(); }
  // No thread will come: what waits for it is lost, and every later item is refused.
  void giveUp();
  static int CloseAllSessions() { return 0; }
  int GetStatus() const { return m_iStatus; }

  // Appends an item, which the queue owns from here on: 0, or kRefused with the item gone. Items that come
  // before the thread wait for it, as many as there is room for.
  int addMessageToList(MCUProcessDataBlock* item);

  // How many threads wait for their turn to add.
  std::size_t producersWaiting();

  // The thread's body: hands the oldest item to the dispatcher, one after the other, until Release().
  void doProcess();
  // The same on the calling thread, which stands in for the queue's, until nothing is left. Returns how many
  // items there were.
  std::size_t workOff();

 private:
  using Items = std::list<std::unique_ptr<MCUProcessDataBlock>>;
  using Lock = std::unique_lock<std::mutex>;

  static void* ThreadProc(void* self);
  // From here on it is worth waiting for room.
  void expectThread();
  // Waits until an item may be added. False: it is refused.
  bool waitForTurn(Lock& lock);
  bool hasRoom() const { return m_messageList.size() < kMostItems; }
  bool isIdle() const { return !m_busy && (m_messageList.empty() || !m_threadRuns); }
  // Whether the calling thread is running one of this queue's handlers.
  bool isHandler() const;
  std::size_t handleAll(Lock& lock);
  // What a handler lacks memory for is not done.
  void handleOldest(Lock& lock);
  void admitOne(Lock& lock);

  pthread_t m_dwMcuProcessThreadID{};
  pthread_t m_hMcuProcessThread{};
  int32_t m_iStatus = 0;

  std::mutex m_processLstMenux;  // guards what follows; never held while a handler runs
  std::condition_variable m_work;
  std::condition_variable m_turn;
  Items m_messageList;  // the item of the running handler stays at the front
  bool m_bExitMcuProcessThread = false;
  bool m_threadRuns = false;
  bool m_busy = false;          // a handler runs, or the thread is between two items
  bool m_admitting = false;     // one producer may go in although the thread is between two items
  std::size_t m_producers = 0;  // waiting for their turn
};

}  // namespace ORVE_MCUC
