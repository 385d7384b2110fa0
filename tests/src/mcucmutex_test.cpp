#include "mcucmutex.h"

#include <gtest/gtest.h>

#include <future>

namespace ORVE_MCUC {
namespace {

bool freeForOthers(CMutexThreadBase& mutex) {
  return std::async(std::launch::async,
                    [&] {
                      if (mutex.TryLock() != 0) return false;
                      mutex.UnLock();
                      return true;
                    })
      .get();
}

TEST(Mutex, ARecursiveLockIsFreeOnlyWhenAllGuardsOfItsThreadAreGone) {
  CMutexThreadRecursive mutex;
  {
    CMutexGuardT outer(mutex);
    {
      CMutexGuardT inner(mutex);
      EXPECT_FALSE(freeForOthers(mutex));
    }
    EXPECT_FALSE(freeForOthers(mutex));
  }
  EXPECT_TRUE(freeForOthers(mutex));
}

TEST(Mutex, APlainLockRefusesItsOwnThreadAndTheRefusedGuardUnlocksNothing) {
  CMutexThread mutex;
  CMutexGuardT holder(mutex);
  {
    CMutexGuardT refused(mutex);
    EXPECT_EQ(refused.UnLock(), 0);
  }
  EXPECT_FALSE(freeForOthers(mutex));
  EXPECT_EQ(holder.UnLock(), 0);
  EXPECT_TRUE(freeForOthers(mutex));
  EXPECT_EQ(holder.Lock(), 0);
  EXPECT_FALSE(freeForOthers(mutex));
}

}  // namespace
}  // namespace ORVE_MCUC
