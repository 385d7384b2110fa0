// Prints on descriptor 3 how many nanoseconds one line of a writer takes. Standard output is the caller's
// choice: the daemon's log looks at it when it opens.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/board.h"
#include "trace_writers.h"

namespace {

double measure(std::string_view writer, const char* directory, int count) {
  const std::filesystem::path file = std::filesystem::path(directory) / (std::string(writer) + ".log");
  if (writer == "stdio") return bench::stdioLines(file, count);
#ifdef BENCH_HAVE_SPDLOG
  if (writer == "spdlog") return bench::spdlogLines(file, count, false);
  if (writer == "spdlog-echo") return bench::spdlogLines(file, count, true);
#endif
  return bench::parlendLines(count);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: bench_trace parlend|stdio|spdlog|spdlog-echo DIRECTORY LINES\n", stderr);
    return 2;
  }
  board_start(argc, argv);
  const double nanoseconds = measure(argv[1], argv[2], static_cast<int>(std::strtol(argv[3], nullptr, 10)));
  return dprintf(3, "%f\n", nanoseconds) > 0 ? 0 : 1;
}
