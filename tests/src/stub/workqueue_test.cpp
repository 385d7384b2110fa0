// The work queue and its thread, with a dispatcher that runs whatever the test has put in its place.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "process/tprocess_ctl.h"
#include "results.h"
#include "stub/mcuprocessthread.h"
#include "threadstart.h"

namespace ORVE_MCUC {
namespace {

std::function<void(int)> handler;  // is given the item's key

}  // namespace

Tprocess_ctl::~Tprocess_ctl() = default;
Tprocess_ctl* Tprocess_ctl::getInstance() {
  static Tprocess_ctl instance;
  return &instance;
}
// No thread can be started here: the tests have their own.
int startDetachedThread(const char*, void* (*)(void*), void*, pthread_t&) {
  return kErrThread;
}
void Tprocess_ctl::onProcessDealwith(MCUProcessDataBlock* block) {
  handler(block->m_key);
}

namespace {

using namespace std::chrono_literals;

constexpr auto kFarTooLong = 10s;

MCUProcessDataBlock* item(int key) {
  auto* block = new MCUProcessDataBlock;
  block->m_key = key;
  return block;
}

// Something that happens once, and the other thread's wait for it. False: it did not in all the time there
// is.
class Happened {
 public:
  void set() {
    const std::lock_guard lock(mutex_);
    done_ = true;
    changed_.notify_all();
  }
  bool wait() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kFarTooLong, [this] { return done_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool done_ = false;
};

class WorkQueueTest : public testing::Test {
 protected:
  WorkQueueTest() {
    handler = [this](int key) { record(key); };
  }
  ~WorkQueueTest() override {
    queue.Release();
    for (auto& thread : threads) thread.join();
  }
  // The queue's thread, and others, as ones that can be joined.
  void startThread() {
    threads.emplace_back([this] { queue.doProcess(); });
  }
  void add(int key) { EXPECT_EQ(queue.addMessageToList(item(key)), kDone) << key; }
  void addAll(int from, int to) {
    for (int key = from; key <= to; ++key) add(key);
  }

  // For a handler that must not return earlier.
  void awaitProducer() {
    const auto end = std::chrono::steady_clock::now() + kFarTooLong;
    while (queue.producersWaiting() == 0 && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(100us);
  }

  void record(int key) {
    const std::lock_guard lock(mutex_);
    handled_.push_back(key);
    if (key == kLast) last.set();
  }
  std::vector<int> handled() {
    const std::lock_guard lock(mutex_);
    return handled_;
  }
  static std::vector<int> numbers(int from, int to) {
    std::vector<int> all;
    for (int key = from; key <= to; ++key) all.push_back(key);
    return all;
  }

  static constexpr int kLast = 9999;
  McuProcessThread queue;
  std::vector<std::thread> threads;
  Happened last;

 private:
  std::mutex mutex_;
  std::vector<int> handled_;
};

TEST_F(WorkQueueTest, ItemsThatCameBeforeTheThreadAreHandledInTheirOrderAndNoMoreAreTakenThanThereIsRoomFor) {
  constexpr int kRoom = McuProcessThread::kMostItems;
  addAll(1, 10);
  queue.addMessageToList(nullptr);
  addAll(11, kRoom - 1);
  EXPECT_EQ(queue.addMessageToList(item(kRoom)), kRefused) << "nobody says that the thread will ever come";
  Happened running;
  handler = [&](int key) {
    if (key == 1) running.set();
    record(key);
  };
  startThread();
  ASSERT_TRUE(running.wait());
  add(kLast);
  ASSERT_TRUE(last.wait());
  auto expected = numbers(1, kRoom - 1);
  expected.push_back(kLast);
  EXPECT_EQ(handled(), expected);
}

TEST_F(WorkQueueTest, AProducerWaitsForTheRunningHandlerAndGetsInBeforeTheNextHoweverManyItemsWait) {
  Happened running;
  Happened added;
  std::atomic<bool> firstReturned{false};
  bool inBeforeTheSecond = false;
  handler = [&](int key) {
    if (key == 1) {
      running.set();
      awaitProducer();
      firstReturned = true;
    }
    if (key == 2) inBeforeTheSecond = added.wait();
    record(key);
  };
  addAll(1, 30);
  startThread();
  ASSERT_TRUE(running.wait());
  add(kLast);
  EXPECT_TRUE(firstReturned);
  added.set();
  ASSERT_TRUE(last.wait());
  EXPECT_TRUE(inBeforeTheSecond);
}

TEST_F(WorkQueueTest, AHandlersOwnItemsWaitForNothingAndOthersWaitForRoom) {
  constexpr int kFollowers = 300;
  constexpr int kInTheWay = kFollowers - static_cast<int>(McuProcessThread::kMostItems) + 1;
  Happened running;
  Happened added;
  std::atomic<int> done{0};
  bool inInTime = false;
  handler = [&](int key) {
    if (key == 0) {
      addAll(1, kFollowers);
      running.set();
      awaitProducer();
    }
    if (key == kInTheWay + 1) inInTime = added.wait();
    record(key);
    ++done;
  };
  add(0);
  startThread();
  ASSERT_TRUE(running.wait());
  add(kLast);
  EXPECT_GE(done, 1 + kInTheWay) << "items that had to go first";
  added.set();
  ASSERT_TRUE(last.wait());
  EXPECT_TRUE(inInTime);
  auto expected = numbers(0, kFollowers);
  expected.push_back(kLast);
  EXPECT_EQ(handled(), expected);
}

TEST_F(WorkQueueTest, ProducersThatNeverPauseLoseNothingAndNeitherStarveTheThreadNorFillTheMemory) {
  constexpr int kProducers = 3;
  constexpr int kEach = 2000;
  std::atomic<int> begun{0};
  std::atomic<int> most{0};
  std::atomic<int> added{1};
  Happened running;
  handler = [&](int key) {
    running.set();
    most = std::max(most.load(), added - begun++);
    record(key);
  };
  add(0);
  startThread();
  ASSERT_TRUE(running.wait());
  Happened all;
  std::atomic<int> left{kProducers};
  for (int p = 0; p < kProducers; ++p) {
    threads.emplace_back([&] {
      for (int i = 0; i < kEach; ++i) {
        add(0);
        ++added;
      }
      if (--left == 0) all.set();
    });
  }
  ASSERT_TRUE(all.wait());
  add(kLast);
  ASSERT_TRUE(last.wait());
  EXPECT_EQ(handled().size(), 2U + kProducers * kEach);
  EXPECT_LE(most, 1 + kProducers) << "what stands in the queue stands before everybody's next item";
}

TEST_F(WorkQueueTest, TheEndOfTheThreadEndsEveryWaitAndWhatComesLaterIsRefused) {
  Happened running;
  Happened released;
  handler = [&](int) {
    addAll(1, McuProcessThread::kMostItems);
    running.set();
    EXPECT_TRUE(released.wait());
    EXPECT_EQ(queue.addMessageToList(item(0)), kRefused) << "nobody will handle it";
  };
  add(0);
  startThread();
  ASSERT_TRUE(running.wait());
  Happened refused;
  threads.emplace_back([&] {
    if (queue.addMessageToList(item(1)) == kRefused) refused.set();
  });
  awaitProducer();
  queue.Release();
  EXPECT_TRUE(refused.wait());
  released.set();
  threads.front().join();
  threads.erase(threads.begin());
  EXPECT_EQ(queue.addMessageToList(item(2)), kRefused);
}

TEST_F(WorkQueueTest, AnIdleThreadEndsToo) {
  startThread();
  queue.Release();
  threads.front().join();
  threads.clear();
}

TEST_F(WorkQueueTest, WithoutItsThreadTheQueueKeepsNothing) {
  add(1);
  ASSERT_EQ(queue.Init(), kErrThread);
  EXPECT_EQ(queue.addMessageToList(item(2)), kRefused);
  EXPECT_EQ(queue.workOff(), 0U);
  EXPECT_TRUE(handled().empty());
}

TEST_F(WorkQueueTest, AHandlerWithoutMemoryLosesItsItemOnly) {
  handler = [&](int key) {
    record(key);
    if (key == 1) throw std::bad_alloc();
  };
  addAll(1, 2);
  startThread();
  add(kLast);
  ASSERT_TRUE(last.wait());
  EXPECT_EQ(handled(), (std::vector{1, 2, kLast}));
}

TEST_F(WorkQueueTest, WithoutAThreadACallWorksOffWhatIsThereAndWhatHandlersAdd) {
  handler = [&](int key) {
    record(key);
    if (key < 3) add(key + 10);
  };
  addAll(1, 3);
  EXPECT_EQ(queue.workOff(), 5U);
  EXPECT_EQ(handled(), (std::vector{1, 2, 3, 11, 12}));
  EXPECT_EQ(queue.workOff(), 0U);
  addAll(4, 4);
  EXPECT_EQ(queue.workOff(), 1U);
}

}  // namespace
}  // namespace ORVE_MCUC
