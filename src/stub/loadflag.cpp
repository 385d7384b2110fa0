#include "stub/loadflag.h"

#include <limits.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include "mcucutil.h"
#include "platform/board.h"

namespace ORVE_MCUC {
namespace {

constexpr char kDirectory[] = "/etc/init.d";
constexpr char kFlagFile[] = "/etc/init.d/flag_fpgaload";
constexpr int kLongestWaitMs = 1000;
constexpr int kPollMs = 100;  // where the directory cannot be watched

}  // namespace

bool fpgaLoadFlagExists() {
  char path[PATH_MAX];
  return board_path(kFlagFile, path, sizeof path) == 0 && access(path, F_OK) == 0;
}

void waitForFpgaLoadFlag() {
  char directory[PATH_MAX];
  const int watch = inotify_init1(IN_CLOEXEC);
  if (watch < 0 || board_path(kDirectory, directory, sizeof directory) != 0 ||
      inotify_add_watch(watch, directory, IN_CREATE | IN_MOVED_TO) < 0) {
    Delay(kPollMs);
  } else if (!fpgaLoadFlagExists()) {  // asked again: it may have come before the watch did
    pollfd ready{watch, POLLIN, 0};
    poll(&ready, 1, kLongestWaitMs);
  }
  if (watch >= 0) close(watch);
}

}  // namespace ORVE_MCUC
