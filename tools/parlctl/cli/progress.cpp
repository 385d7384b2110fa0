#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace parlctl {

namespace {

constexpr std::size_t kCells = 40;

}  // namespace

Progress::Progress(std::string what, std::size_t whole, std::size_t enough)
    : what_(std::move(what)),
      whole_(whole),
      shown_(whole >= enough && whole > 0 && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
  if (shown_) std::fprintf(stderr, "\r\033[K");
}

void Progress::at(std::size_t done) {
  if (!shown_) return;
  const std::size_t percent = std::min(done, whole_) * 100 / whole_;
  if (percent == percent_) return;
  percent_ = percent;
  const std::string bar(percent * kCells / 100, '#');
  std::fprintf(stderr, "\r%s [%-40s] %3zu %%", what_.c_str(), bar.c_str(), percent);
  std::fflush(stderr);
}

}  // namespace parlctl
