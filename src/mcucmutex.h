// Locks of the daemon: POSIX mutexes that answer with a result, and the guard through which they are taken.
#pragma once

#include <pthread.h>

namespace ORVE_MCUC {

// What both kinds of lock share. Lock, UnLock and TryLock: 0 done, -1 failed.
class CMutexThreadBase {
 public:
  CMutexThreadBase(const CMutexThreadBase&) = delete;
  CMutexThreadBase& operator=(const CMutexThreadBase&) = delete;

  int Lock();
  int UnLock();
  int TryLock();

 protected:
  explicit CMutexThreadBase(int type);
  ~CMutexThreadBase();

 private:
  pthread_mutex_t m_Lock;
};

// The thread that holds it may take it again, and gives it back as often as it took it.
class CMutexThreadRecursive : public CMutexThreadBase {
 public:
  CMutexThreadRecursive();
};

// Whoever holds it cannot take it again: a second Lock fails instead of waiting for itself for ever.
class CMutexThread : public CMutexThreadBase {
 public:
  CMutexThread();
};

// Holds a lock to the end of its block. Belongs to the thread that made it.
template <class Mutex>
class CMutexGuardT {
 public:
  explicit CMutexGuardT(Mutex& mutex) : m_Mutex(mutex) { Lock(); }
  ~CMutexGuardT() { UnLock(); }
  CMutexGuardT(const CMutexGuardT&) = delete;
  CMutexGuardT& operator=(const CMutexGuardT&) = delete;

  // 0: locked; -1: not, and the guard will not unlock either.
  int Lock() {
    const int result = m_Mutex.Lock();
    m_bLocked = result == 0;
    return result;
  }
  // 0: unlocked, or there was nothing to unlock; -1: the lock refused.
  int UnLock() {
    if (!m_bLocked) return 0;
    m_bLocked = false;
    return m_Mutex.UnLock();
  }

 private:
  Mutex& m_Mutex;
  bool m_bLocked = false;
};

}  // namespace ORVE_MCUC
