#include "mcucmutex.h"

namespace ORVE_MCUC {
namespace {

int resultOf(int error) {
  return error == 0 ? 0 : -1;
}

}  // namespace

CMutexThreadBase::CMutexThreadBase(int type) {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, type);
  pthread_mutex_init(&m_Lock, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

CMutexThreadBase::~CMutexThreadBase() {
  pthread_mutex_destroy(&m_Lock);
}

int CMutexThreadBase::Lock() {
  return resultOf(pthread_mutex_lock(&m_Lock));
}

int CMutexThreadBase::UnLock() {
  return resultOf(pthread_mutex_unlock(&m_Lock));
}

int CMutexThreadBase::TryLock() {
  return resultOf(pthread_mutex_trylock(&m_Lock));
}

CMutexThreadRecursive::CMutexThreadRecursive() : CMutexThreadBase(PTHREAD_MUTEX_RECURSIVE) {}

// Error checking is a normal mutex that reports its misuse.
CMutexThread::CMutexThread() : CMutexThreadBase(PTHREAD_MUTEX_ERRORCHECK) {}

}  // namespace ORVE_MCUC
