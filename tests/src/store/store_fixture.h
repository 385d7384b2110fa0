// A board and a fresh store in the test's own process, without threads: what the store sends is kept.
#pragma once

#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <fstream>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "mcuctrace.h"
#include "mcucutil.h"
#include "outgoing.h"
#include "proto/store/data_common.h"
#include "testboard.h"

namespace ORVE_MCUC {

class StoreFixture : public testing::Test, private Outgoing {
 protected:
  using Bytes = TestBoard::Bytes;
  using Fault = TestBoard::Fault;

  StoreFixture() {
    setOutgoing(this);
    board.takeTime();
  }
  ~StoreFixture() override {
    setOutgoing(nullptr);
    Data_Global::deleteInstance();
    Data_Preset::deleteInstance();
  }

  static Data_Global& store() { return *Data_Global::getInstance(); }

  // "1f 0f": register and data of each push since the last time, feature registers by their FPGA address.
  std::vector<std::string> pushes() { return std::exchange(sent_, {}); }

  // The journal from here on.
  void forgetJournal() { seen_ = board.journal().size(); }
  std::vector<std::string> journal() const {
    auto lines = board.journal();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::min(seen_, lines.size())));
    return lines;
  }

  // The Error and Warning lines that something writes.
  template <class Action>
  static std::string errorsOf(Action action) {
    CTrace::instance();
    testing::internal::CaptureStdout();
    setTraceLevel(0);
    action();
    setTraceLevel(4);
    return testing::internal::GetCapturedStdout();
  }

  // Runs something on a thread of its own while this one holds a lock, and what `meanwhile` does once the other
  // waits for it. Whether the other had to wait.
  template <class Mutex, class Action, class Meanwhile>
  static bool waitsFor(Mutex& mutex, Action action, Meanwhile meanwhile) {
    std::atomic<pid_t> id{0};
    std::atomic<bool> done{false};
    mutex.Lock();
    std::thread other([&] {
      id = gettid();
      action();
      done = true;
    });
    while (!done && !isBlocked(id)) std::this_thread::yield();
    const bool waited = !done;
    meanwhile();
    mutex.UnLock();
    other.join();
    return waited;
  }

  TestBoard board;

 private:
  // In a futex: nothing else that the store does sleeps, with the board's time in the test's hands.
  static bool isBlocked(pid_t thread) {
    if (thread == 0) return false;
    std::ifstream stream("/proc/self/task/" + std::to_string(thread) + "/syscall");
    std::string number;
    stream >> number;
    return number == std::to_string(SYS_futex);
  }
  int send(IMD_proto3rd message) override {
    const uint32_t address = message.proto.m_uiRegisterUnitAddress;
    char text[16];
    std::snprintf(text, sizeof text, "%x ", address >= 0x02000000 && address < 0x02000200 ? address & 0x1FF : address);
    sent_.emplace_back(text);
    for (const uint8_t byte : message.proto.m_data) {
      std::snprintf(text, sizeof text, "%02x", byte);
      sent_.back() += text;
    }
    return 0;
  }
  int queue(std::unique_ptr<MCUProcessDataBlock>) override { return 0; }

  std::vector<std::string> sent_;
  std::size_t seen_ = 0;
};

}  // namespace ORVE_MCUC
