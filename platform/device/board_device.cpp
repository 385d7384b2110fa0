// The real board: paths as they stand, the system's own shell and clock.
#include <sys/time.h>
#include <sys/wait.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "platform/apipc.h"
#include "platform/board.h"

namespace {

/** The exit status of a finished command; -1 when it did not end by itself. */
int exitStatus(int status) {
  return status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The device's queue has no call that waits: who puts a message there tells who takes it.
std::mutex queueLock;
std::condition_variable queueFilled;
bool told = false;

}  // namespace

void board_start(int /*argc*/, char** /*argv*/) {}

int board_path(const char* device_path, char* path, size_t size) {
  const size_t length = std::strlen(device_path);
  if (length >= size) return -1;
  std::memcpy(path, device_path, length + 1);
  return 0;
}

// The daemon's standard output is the place of its log lines, and may be one that nobody reads.
int board_shell(const char* command) {
  return exitStatus(std::system((std::string("exec >/dev/null; ") + command).c_str()));
}

int board_shell_line(const char* command, char* line, size_t size) {
  std::FILE* output = popen(command, "re");
  if (!output) return -1;
  const bool any = std::fgets(line, static_cast<int>(size), output) != nullptr;
  pclose(output);
  return any ? static_cast<int>(std::strlen(line)) : 0;
}

void board_pause(int64_t microseconds) {
  if (microseconds > 0) std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

int64_t board_monotonic_us(void) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<int64_t>(now.tv_sec) * 1'000'000 + now.tv_nsec / 1000;
}

void board_clock(struct timespec* now) {
  clock_gettime(CLOCK_REALTIME, now);
}

int board_clock_set(time_t seconds) {
  const timeval time{seconds, 0};
  return settimeofday(&time, nullptr);
}

uint64_t apipc_connection_number(uint32_t task) {
  return apipc_connect_chk_task_by_taskid(task) == -1 ? 0 : 1;
}

void apipc_que_wait(int timeout_ms) {
  std::unique_lock lock(queueLock);
  queueFilled.wait_for(lock, std::chrono::milliseconds(timeout_ms), [] { return told; });
  told = false;
}

void apipc_que_told(void) {
  {
    const std::lock_guard lock(queueLock);
    told = true;
  }
  queueFilled.notify_one();
}
