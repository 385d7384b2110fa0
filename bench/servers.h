// The servers of a measure: the daemon on a board of its own, and the yardsticks.
#pragma once

#include <filesystem>
#include <string>

#include "child.h"

namespace bench {

// Where the programs are.
struct Programs {
  std::filesystem::path daemon;
  std::filesystem::path helpers;  // directory of the bench_* programs
};

// A board directory without a daemon; start() may be called again after the child has ended.
class Board {
 public:
  std::filesystem::path directory() const { return home_.path() / "board"; }
  std::filesystem::path socket() const { return directory() / "run/apipc.sock"; }
  std::filesystem::path output() const { return home_.path() / "stdout"; }

 private:
  TempDir home_;
};

// A daemon that is up: its start-up, with the two seconds it waits at the end, is over. option: its first
// argument, none when empty.
class Daemon {
 public:
  Daemon(const Programs& programs, const std::string& option);
  std::filesystem::path directory() const { return board_.directory(); }
  const std::filesystem::path socket() const { return board_.socket(); }
  pid_t pid() const { return process_.pid(); }

 private:
  Board board_;
  Child process_;
};

// bench_yardstick of one kind, at a socket of its own.
class Yardstick {
 public:
  Yardstick(const Programs& programs, const std::string& kind);
  std::filesystem::path socket() const { return home_.path() / "socket"; }
  static constexpr int kThreads = 6;  // as many as the daemon has

 private:
  TempDir home_;
  Child process_;
};

std::vector<std::string> daemonCommand(const Programs& programs, const std::string& option);
std::vector<std::string> yardstickCommand(const Programs& programs, const std::string& kind,
                                          const std::filesystem::path& socket);

}  // namespace bench
