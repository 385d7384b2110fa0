// The first line of a trace file: where its data ends. Not for several threads at once.
#pragma once

#include <unistd.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

namespace ORVE_MCUC {

// Read anew for every line, because others may empty a log or set its end while it is written. Read and
// written by calls and not through a mapping: a page that is taken away then costs a line and not the
// process.
class TraceFileHeader {
 public:
  static constexpr std::size_t kSize = 32;

  explicit TraceFileHeader(int file) : file_(file) {}

  // Nothing when the file has no header, or none that is a number.
  std::optional<std::size_t> read() const {
    Text text;
    const ssize_t count = pread(file_, text.data(), kSize, 0);
    if (count <= 0) return {};
    std::size_t end = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + count, end);
    if (parsed.ec != std::errc()) return {};
    return end;
  }

  // False when there is no room for it.
  bool write(std::size_t end) const {
    Text text;
    text.fill(' ');
    text.back() = '\n';
    std::to_chars(text.data(), text.data() + text.size() - 1, end);
    return pwrite(file_, text.data(), kSize, 0) == static_cast<ssize_t>(kSize);
  }

 private:
  using Text = std::array<char, kSize>;

  int file_;
};

}  // namespace ORVE_MCUC
