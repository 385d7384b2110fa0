// A line as a plain stdio program writes it to a file that holds its own end: compose with snprintf, read the
// end from the header, seek there, write, echo, rewrite the header, flush.
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "rounds.h"
#include "trace_writers.h"

namespace bench {
namespace {

constexpr std::size_t kLineSize = 1024;
constexpr std::size_t kHeaderSize = 32;

std::size_t compose(std::array<char, kLineSize>& line, const TraceValues& values) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  std::array<char, kLineSize> text{};
  std::snprintf(text.data(), text.size(), "%s : %d revise = %u, iDataLen = %d, usCheckout=%u", "trace_stdio",
                __LINE__, values.revise, values.length, values.checksum);
  const int length = std::snprintf(
      line.data(), line.size(), "[%02d/%02d/%04d %02d:%02d:%02d.%03ld pid=%d uuid=0x%x] %s:%s\n",
      local.tm_mon + 1, local.tm_mday, local.tm_year + 1900, local.tm_hour, local.tm_min, local.tm_sec,
      now.tv_nsec / 1000000, getpid(), 0U, "Info", text.data());
  return std::min(static_cast<std::size_t>(length), line.size() - 1);
}

void append(std::FILE* file, const char* line, std::size_t length) {
  std::array<char, kHeaderSize + 1> header{};
  std::rewind(file);
  if (std::fread(header.data(), 1, kHeaderSize, file) != kHeaderSize) return;
  const long end = std::strtol(header.data(), nullptr, 10);
  std::fseek(file, end, SEEK_SET);
  std::fwrite(line, 1, length, file);
  std::fwrite(line, 1, length, stdout);
  std::rewind(file);
  std::fprintf(file, "%-31ld\n", end + static_cast<long>(length));
  std::fflush(file);
}

}  // namespace

double stdioLines(const std::filesystem::path& file, int count) {
  std::FILE* stream = std::fopen(file.c_str(), "w+");
  if (!stream) return 0;
  std::fprintf(stream, "%-31d\n", static_cast<int>(kHeaderSize));
  const double start = nowUs();
  for (int i = 0; i < count; ++i) {
    std::array<char, kLineSize> line;
    append(stream, line.data(), compose(line, traceValues(i)));
  }
  const double nanoseconds = (nowUs() - start) * 1e3 / count;
  std::fclose(stream);
  return nanoseconds;
}

}  // namespace bench
