// The work queue and its thread.
#include <functional>
#include <thread>

#include "../../platform/board_fixture.h"
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
  void TearDown() override {
    queue.Release();
    if (worker.joinable()) worker.join();
  }
  // The queue's thread, as one that can be joined before the board goes away.
  void startThread() {
    worker = std::thread([this] { queue.doProcess(); });
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

  McuProcessThread queue;
  std::thread worker;
};

TEST_F(WorkQueueTest, ItemsWaitForTheThreadAndAreHandledInTheirOrder) {
  for (uint8_t number = 1; number <= 3; ++number) queue.addMessageToList(item(number));
  queue.addMessageToList(nullptr);
  queue.addMessageToList(item(4, ControllerSortKey));
  queue.addMessageToList(item(5, 4711));
  EXPECT_EQ(written(), "");
  startThread();
  waitFor("010203");
  queue.addMessageToList(item(6));
  waitFor("01020306");
}

TEST_F(WorkQueueTest, AProducerGetsInAfterTheRunningHandlerHoweverManyItemsWait) {
  // Flash that fails makes each handler pause between its three tries: long enough for a producer to be
  // waiting.
  constexpr std::size_t kWaiting = 30;
  constexpr std::size_t kTries = 3;
  failNext(simboard::Fault::FlashWrite, kEveryCall);
  setDelayScale(1000);
  for (std::size_t i = 0; i < kWaiting; ++i) queue.addMessageToList(item(8));
  startThread();
  while (journal().empty()) std::this_thread::yield();
  queue.addMessageToList(item(9));
  EXPECT_LE(journal().size(), 6 * kTries) << "items before it: the running one, and some for a slow machine";
  failNext(simboard::Fault::FlashWrite, 0);
  setDelayScale(100);
  for (int i = 0; i < 10000 && !written().ends_with("09"); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_TRUE(written().ends_with("09"));
}

TEST_F(WorkQueueTest, ManyProducersLoseNothing) {
  startThread();
  constexpr int kProducers = 4;
  std::vector<std::thread> producers;
  producers.reserve(kProducers);
  for (int p = 0; p < kProducers; ++p) {
    producers.emplace_back([this] {
      for (int i = 0; i < 250; ++i) queue.addMessageToList(item(7));
    });
  }
  for (auto& producer : producers) producer.join();
  for (int i = 0; i < 5000 && written().size() < 2000; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_EQ(written().size(), 2000U);
}

}  // namespace
}  // namespace ORVE_MCUC
