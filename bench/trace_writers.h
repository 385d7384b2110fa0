// Writers of one log line, for the comparison: each writes the same text of a checked frame to a file of its
// own.
#pragma once

#include <filesystem>

namespace bench {

// Values of the line; they change from line to line, so that nothing can be composed once.
struct TraceValues {
  unsigned revise;
  int length;
  unsigned checksum;
};
constexpr TraceValues traceValues(int i) {
  return {static_cast<unsigned>(i * 31) & 0xFFFF, 20 + i % 64, static_cast<unsigned>(i * 31) & 0xFFFF};
}

// Each writes count lines and returns the nanoseconds that one took. echo: standard output gets them too.
double parlendLines(int count);
double stdioLines(const std::filesystem::path& file, int count);
double spdlogLines(const std::filesystem::path& file, int count, bool echo);

}  // namespace bench
