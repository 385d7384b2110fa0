// The daemon's trace files: found, read in their order, and cut into lines.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace parlctl {

enum class TraceLevel { Error, Warning, Debug, Info };
inline constexpr std::array<std::string_view, 4> kTraceLevels{"error", "warning", "debug", "info"};

// One line. A line without a stamp belongs to the one before and has its level and time.
struct TraceLine {
  int64_t milliseconds = 0;  // board's local time since 1970, as if it were UTC
  TraceLevel level = TraceLevel::Info;
  std::string text;     // the whole line, without its end
  std::string source;   // "stub/stubutil"
  std::string message;  // behind source and line number
};

// Follows trace files in a directory. A file's header says where its data end; what lies behind is stale.
class TraceReader {
 public:
  explicit TraceReader(std::filesystem::path directory) : directory_(std::move(directory)) {}
  // Whole lines that came since the last call, file after file in the order of their first lines. A file that
  // is used again from its beginning is read again. Throws peer::Error (Board) when the directory cannot be
  // read.
  std::vector<TraceLine> more();
  // Names of the files, in the order of their first lines.
  std::vector<std::string> files() const;
  const std::filesystem::path& directory() const { return directory_; }

 private:
  struct Place {
    uint64_t offset = 32;  // behind the header
    std::string begin;     // stamp of the first line: another one says that the file was begun anew
  };
  void readFile(const std::filesystem::path& file, std::vector<TraceLine>& lines);

  std::filesystem::path directory_;
  std::map<std::string, Place> places_;
  TraceLine last_;
};

// Reads a stamp, level, source and message out of a line; false: there is no stamp.
bool parseTraceLine(std::string_view text, TraceLine& line);

// "01/02/2024 10:20:30.456", as the files have it.
std::string stampText(int64_t milliseconds);
// "2024-01-02T10:20:30.456+01:00", with this machine's zone, which the files do not tell.
std::string isoText(int64_t milliseconds);
// A moment of the past: "90s", "10m", "2h", "1d" before now, "10:20", "10:20:30" of today, or
// "2024-01-02T10:20:30", in the terms of TraceLine. Throws peer::Error (Usage).
int64_t momentOf(const std::string& text, int64_t now);
// Now in these terms, on a clock that differs from this machine's by so many seconds.
int64_t localNow(int64_t clockOffset);

}  // namespace parlctl
