// The work queue and its thread.
#include <functional>
#include <thread>

#include "../platform/board_fixture.h"
#include "mcucutil.h"
#include "process/tprocess_ctl.h"
#include "stub/mcuprocessthread.h"

namespace ORVE_MCUC {
namespace {

// An item that writes one byte of backup information; the journal shows the order of the writes.
MCUProcessDataBlock* item(uint8_t number, int key = DoBackupInfoKey) {
  auto* block = new MCUProcessDataBlock;
  const char bytes[] = {static_cast<char>(number), 0, 0x30, 0x02, 1, 0, static_cast<char>(number)};
  block->setData(bytes, sizeof bytes);
  block->m_key = key;
  return block;
}

class WorkQueueTest : public BoardTest {
 protected:
  void SetUp() override {
    start();
    Tprocess_ctl::getInstance()->initialize();
  }
  // The thread is detached: the queue outlives the test, as the daemon's outlives everything.
  static McuProcessThread& newQueue() {
    static auto& queues = *new std::vector<McuProcessThread*>;
    return *queues.emplace_back(new McuProcessThread);
  }
  // The bytes that have been written, in their order.
  std::string written() const {
    std::string order;
    for (const auto& line : journal()) {
      if (line.starts_with("flash-write")) order += line.substr(line.rfind(' ') + 1);
    }
    return order;
  }
  void waitFor(const std::string& order) {
    for (int i = 0; i < 2000 && written() != order; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(written(), order);
  }
};

TEST_F(WorkQueueTest, ItemsWaitForTheThreadAndAreHandledInTheirOrder) {
  McuProcessThread& queue = newQueue();
  for (uint8_t number = 1; number <= 3; ++number) queue.addMessageToList(item(number));
  queue.addMessageToList(nullptr);
  queue.addMessageToList(item(4, ControllerSortKey));
  queue.addMessageToList(item(5, 4711));
  EXPECT_EQ(written(), "");
  ASSERT_EQ(queue.Init(), 0);
  waitFor("010203");
  queue.addMessageToList(item(6));
  waitFor("01020306");
  queue.Release();
}

TEST_F(WorkQueueTest, AProducerGetsInAfterTheRunningHandlerHoweverManyItemsWait) {
  // Flash that fails makes each handler pause between its three tries: long enough for a producer to be
  // waiting.
  constexpr std::size_t kWaiting = 30;
  constexpr std::size_t kTries = 3;
  failNext(simboard::Fault::FlashWrite, kEveryCall);
  setDelayScale(1000);
  McuProcessThread& queue = newQueue();
  for (std::size_t i = 0; i < kWaiting; ++i) queue.addMessageToList(item(8));
  ASSERT_EQ(queue.Init(), 0);
  while (journal().empty()) std::this_thread::yield();
  queue.addMessageToList(item(9));
  EXPECT_LE(journal().size(), 6 * kTries) << "items before it: the running one, and some for a slow machine";
  failNext(simboard::Fault::FlashWrite, 0);
  setDelayScale(100);
  for (int i = 0; i < 10000 && !written().ends_with("09"); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_TRUE(written().ends_with("09"));
  queue.Release();
}

TEST_F(WorkQueueTest, ManyProducersLoseNothing) {
  McuProcessThread& queue = newQueue();
  ASSERT_EQ(queue.Init(), 0);
  std::vector<std::thread> producers;
  for (int p = 0; p < 4; ++p) {
    producers.emplace_back([&queue] {
      for (int i = 0; i < 250; ++i) queue.addMessageToList(item(7));
    });
  }
  for (auto& producer : producers) producer.join();
  for (int i = 0; i < 5000 && written().size() < 2000; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_EQ(written().size(), 2000U);
  queue.Release();
}

}  // namespace
}  // namespace ORVE_MCUC
