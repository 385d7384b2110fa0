// What probes share that run the daemon's parts on a simulated board and print figures.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <vector>

#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"
#include "rounds.h"

namespace bench {

inline constexpr int kResultFd = 3;

// The board, without lines of the log and without pauses.
inline void startBoard(char** argv) {
  char* arguments[] = {argv[0], nullptr};
  board_start(1, arguments);
  ORVE_MCUC::setTraceLevel(0);
  ORVE_MCUC::setDelayScale(0);
}

// Median of work(n), n from 0 on, in microseconds.
template <class Work>
double medianTime(int rounds, Work work) {
  std::vector<double> samples;
  for (int n = 0; n < rounds; ++n) {
    const double start = nowUs();
    work(n);
    samples.push_back(nowUs() - start);
  }
  return median(samples);
}

// A file beside the board's own, to write the same bytes plainly.
inline int openBeside(const char* name) {
  char path[PATH_MAX];
  const int file =
      board_path(name, path, sizeof path) == 0 ? open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600) : -1;
  if (file < 0) std::abort();
  return file;
}

inline void writeAt(int file, const unsigned char* bytes, std::size_t length, std::size_t at) {
  if (pwrite(file, bytes, length, static_cast<off_t>(at)) != static_cast<ssize_t>(length)) std::abort();
}

}  // namespace bench
