// An object made on first use under a class-wide lock, and destroyed on request.
#pragma once

#include <atomic>

#include "mcucmutex.h"

namespace ORVE_MCUC {

template <class T>
class Singleton {
 public:
  // make() is called at most once until destroy().
  template <class Make>
  T* get(Make make) {
    if (T* instance = instance_.load(std::memory_order_acquire)) return instance;
    CMutexGuardT<CMutexThreadRecursive> guard(m_lock);
    if (instance_.load(std::memory_order_relaxed) == nullptr)
      instance_.store(make(), std::memory_order_release);
    return instance_.load(std::memory_order_relaxed);
  }
  void destroy() {
    CMutexGuardT<CMutexThreadRecursive> guard(m_lock);
    delete instance_.exchange(nullptr);
  }

 private:
  CMutexThreadRecursive m_lock;
  std::atomic<T*> instance_{nullptr};
};

}  // namespace ORVE_MCUC
