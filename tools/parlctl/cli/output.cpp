#include "output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "peer/error.h"

namespace parlctl {

namespace {

using peer::Failure;

void waitForRoom(int descriptor) {
  pollfd entry{.fd = descriptor, .events = POLLOUT, .revents = 0};
  poll(&entry, 1, -1);
}

void writeAll(int descriptor, std::string_view text, const std::string& name) {
  while (!text.empty()) {
    const ssize_t done = ::write(descriptor, text.data(), text.size());
    if (done > 0) {
      text.remove_prefix(static_cast<std::size_t>(done));
    } else if (errno == EAGAIN) {
      waitForRoom(descriptor);
    } else if (errno == EPIPE) {
      throw ReaderLeft();
    } else if (errno != EINTR) {
      peer::failWithErrno(Failure::LostOutput, "output lost, " + name);
    }
  }
}

}  // namespace

void noticeLeavingReaders() {
  std::signal(SIGPIPE, [](int) {});  // a handler, unlike ignoring, is not handed on
}

void endAsBrokenPipe() {
  std::signal(SIGPIPE, SIG_DFL);
  std::raise(SIGPIPE);
  _exit(128 + SIGPIPE);  // blocked: what a shell would show
}

void occupyClosedStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(descriptor, F_GETFD) < 0)
      open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // takes the lowest free number
}

void writeOutput(std::string_view text) {
  writeAll(STDOUT_FILENO, text, "standard output");
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  if (path_.empty()) return;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_CLOEXEC;
  descriptor_ = open(path_.c_str(), kFlags | O_EXCL, 0666);
  made_ = descriptor_ >= 0;
  if (!made_) descriptor_ = open(path_.c_str(), kFlags, 0666);
  if (descriptor_ < 0) peer::failWithErrno(Failure::Usage, "cannot write " + path_);
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (made_) unlink(path_.c_str());
}

void OutputFile::write(std::string_view text) {
  if (!wanted()) return;
  made_ = false;
  struct stat kind {};
  const bool regular = fstat(descriptor_, &kind) == 0 && S_ISREG(kind.st_mode);
  if (regular && ftruncate(descriptor_, 0) != 0)
    peer::failWithErrno(Failure::LostOutput, "output lost, " + path_);
  writeAll(descriptor_, text, path_);
  if (close(std::exchange(descriptor_, -1)) != 0)
    peer::failWithErrno(Failure::LostOutput, "output lost, " + path_);
}

}  // namespace parlctl
