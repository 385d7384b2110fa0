// A real daemon on a board directory of its own, which goes with it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

#include "peer/board.h"
#include "peer/peer.h"

inline constexpr peer::milliseconds kPatience{20000};  // emulators and sanitizers are slow

// Asks until the answer is yes; false when it was not within kPatience.
bool eventually(const std::function<bool()>& condition);
// The whole of a file; empty when there is none.
std::string contents(const std::filesystem::path& file);

class DaemonProcess {
 public:
  DaemonProcess();  // creates the board directory, starts nothing
  ~DaemonProcess();
  DaemonProcess(const DaemonProcess&) = delete;
  DaemonProcess& operator=(const DaemonProcess&) = delete;

  // Writes a file of the board directory, such as board.conf or etc/sysconf.env.
  void prepare(const std::string& file, const std::string& text) const;
  // Starts the daemon and waits until it takes a connection; throws when it ends or hangs instead.
  void start(const std::string& argument = "");
  // Ends it at once, as a power cut would.
  void kill();
  bool alive();
  // Not under an emulator: a program of another processor cannot start itself again.
  static bool canReboot();
  // Waits until it has ended by itself: the exit status; -1: a signal ended it, or it does not end.
  int awaitEnd();

  // Starts one more daemon on the same board and waits for its end: the exit status.
  int runSecond(std::string& errors) const;

  peer::Peer connect(uint32_t serviceCode) const;
  peer::Peer connect();  // under a service code that nobody else has
  const peer::Board& board() const { return board_; }
  // What the trace files hold between their header and their end mark.
  std::string trace() const;

 private:
  pid_t spawn(const std::string& argument, const std::string& output) const;

  std::filesystem::path directory_;
  peer::Board board_;
  pid_t process_ = -1;
  uint32_t nextService_ = 0x0A7000;
};
