// Processes that a measure starts, the temporary directories they live in, and what /proc says about them.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace bench {

// A directory of its own, removed with everything in it.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// One child process; killed and collected in the end. Standard output goes to a file (/dev/null unless
// another is named); what it prints on descriptor kResultFd is its result.
class Child {
 public:
  static constexpr int kResultFd = 3;

  // Throws std::runtime_error when the program cannot be started.
  explicit Child(const std::vector<std::string>& command, const std::filesystem::path& board = {},
                 const std::string& standardOutput = "/dev/null");
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t pid() const { return pid_; }
  // Waits for its end: the numbers it printed. Throws when there are none.
  std::vector<double> results();

 private:
  pid_t pid_ = -1;
  int resultFd_ = -1;
};

// Resident memory in KiB by the name of the line in /proc/PID/status (VmRSS, RssAnon).
double statusKiB(pid_t pid, const std::string& name);

// Work of all threads of a process so far.
struct Activity {
  double processorUs = 0;
  double wakeUps = 0;
  int threads = 0;
};
Activity activity(pid_t pid);

}  // namespace bench
