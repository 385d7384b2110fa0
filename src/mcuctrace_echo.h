// Standard output as the second place of every trace line. Not for several threads at once.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string_view>

namespace ORVE_MCUC {

// Never waits for a reader and is never ended by one that left: what standard output does not take at once is
// left out. Neither its file status flags, which other processes share, nor the handling of signals is
// changed.
class StandardOutputEcho {
 public:
  StandardOutputEcho() { choose(); }
  StandardOutputEcho(const StandardOutputEcho&) = delete;
  StandardOutputEcho& operator=(const StandardOutputEcho&) = delete;

  void write(std::string_view line) const {
    switch (way_) {
      case Way::kNone:
        break;
      case Way::kWrite:
        put(line);
        break;
      case Way::kSend:
        (void)send(descriptor_, line.data(), line.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        break;
      case Way::kAskFirst:
        putIfReady(line);
        break;
    }
  }

 private:
  enum class Way { kNone, kWrite, kSend, kAskFirst };

  void choose() {
    struct stat status {};
    if (fstat(STDOUT_FILENO, &status) != 0) return;
    if (S_ISREG(status.st_mode)) {
      way_ = Way::kWrite;
    } else if (S_ISSOCK(status.st_mode)) {
      way_ = Way::kSend;
    } else if (!(S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3))) {  // /dev/null
      openOwn(S_ISFIFO(status.st_mode));
    }
  }

  // An open file description of our own can be non-blocking without making it so for others. Of a pipe it
  // also holds the reading end, which is never read: as long as a pipe has a reader, writing to it raises no
  // SIGPIPE.
  void openOwn(bool pipe) {
    const int flags = (pipe ? O_RDWR : O_WRONLY) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int own = open("/proc/self/fd/1", flags);
    way_ = own >= 0 ? Way::kWrite : Way::kAskFirst;
    if (own >= 0) descriptor_ = own;
  }

  void put(std::string_view line) const {
    if (::write(descriptor_, line.data(), line.size()) < 0) return;
  }

  // For a pipe of another user, which cannot be opened anew.
  void putIfReady(std::string_view line) const {
    pollfd output{descriptor_, POLLOUT, 0};
    if (poll(&output, 1, 0) != 1 || output.revents != POLLOUT) return;
    sigset_t pipeSignal;
    sigset_t before;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
    const bool readerLeft = ::write(descriptor_, line.data(), line.size()) < 0 && errno == EPIPE;
    const timespec now{};
    if (readerLeft && sigismember(&before, SIGPIPE) == 0) sigtimedwait(&pipeSignal, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  int descriptor_ = STDOUT_FILENO;
  Way way_ = Way::kNone;
};

}  // namespace ORVE_MCUC
