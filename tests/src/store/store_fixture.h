// The store of a daemon without threads, whose FPGA is not loaded yet.
#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "testdaemon.h"

namespace ORVE_MCUC {

class StoreFixture : public testing::Test {
 protected:
  using Bytes = TestBoard::Bytes;
  using Fault = TestBoard::Fault;

  explicit StoreFixture(const std::string& conf = "") : daemon("fpga_autoload = no\n" + conf) {}

  static Data_Global& store() { return *Data_Global::getInstance(); }

  // The Error and Warning lines that something writes.
  template <class Action>
  std::vector<std::string> errorsOf(Action action) {
    daemon.trace();
    setTraceLevel(0);
    action();
    setTraceLevel(4);
    return daemon.trace();
  }

  // Runs something on a thread of its own until it has to wait for somebody, and then what lets it go on.
  // Whether it had to wait.
  template <class Action, class LetGo>
  static bool comesToWait(Action action, LetGo letGo) {
    std::atomic<pid_t> id{0};
    std::atomic<bool> done{false};
    std::thread other([&] {
      id = gettid();
      action();
      done = true;
    });
    while (!done && !sleeps(id)) std::this_thread::yield();
    const bool waited = !done;
    letGo();
    other.join();
    return waited;
  }
  // The same while this thread holds a lock, with what comes before it lets go.
  template <class Mutex, class Action, class Meanwhile>
  static bool waitsFor(Mutex& mutex, Action action, Meanwhile meanwhile) {
    mutex.Lock();
    return comesToWait(action, [&] {
      meanwhile();
      mutex.UnLock();
    });
  }

  TestDaemon daemon;
  TestBoard& board = daemon.board;

 private:
  // Nothing else that the store does sleeps: pauses do not wait here.
  static bool sleeps(pid_t thread) {
    if (thread == 0) return false;
    std::ifstream stream("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string stat;
    std::getline(stream, stat);
    const std::size_t name = stat.rfind(") ");
    return name != stat.npos && stat[name + 2] == 'S';
  }
};

}  // namespace ORVE_MCUC
