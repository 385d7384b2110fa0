// Lines on a standard stream, for both sides of the platform calls. Not for several threads at once.
#ifndef PLATFORM_LINEECHO_H
#define PLATFORM_LINEECHO_H

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>

namespace platform {

// Never waits for a reader and is never ended by one that left: what the stream does not take at once is
// left out. Neither its file status flags, which other processes share, nor the handling of signals is
// changed.
class LineEcho {
 public:
  // The descriptor stays the caller's and must stay open.
  explicit LineEcho(int output = STDOUT_FILENO) : descriptor_(output) { choose(output); }
  ~LineEcho() {
    if (own_) close(descriptor_);
  }
  LineEcho(const LineEcho&) = delete;
  LineEcho& operator=(const LineEcho&) = delete;

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

  void choose(int output) {
    struct stat status {};
    if (fstat(output, &status) != 0) return;
    if (S_ISREG(status.st_mode)) {
      way_ = Way::kWrite;
    } else if (S_ISSOCK(status.st_mode)) {
      way_ = Way::kSend;
    } else if (!(S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3))) {  // /dev/null
      openOwn(output, S_ISFIFO(status.st_mode));
    }
  }

  // An open file description of our own can be non-blocking without making it so for others. Of a pipe it
  // also holds the reading end, which is never read: as long as a pipe has a reader, writing to it raises no
  // SIGPIPE.
  void openOwn(int output, bool pipe) {
    const int flags = (pipe ? O_RDWR : O_WRONLY) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const std::string path = "/proc/self/fd/" + std::to_string(output);
    const int opened = open(path.c_str(), flags);
    own_ = opened >= 0;
    way_ = own_ ? Way::kWrite : Way::kAskFirst;
    if (own_) descriptor_ = opened;
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

  int descriptor_;
  bool own_ = false;
  Way way_ = Way::kNone;
};

}  // namespace platform

#endif
