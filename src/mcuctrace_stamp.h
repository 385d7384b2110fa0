// The text in front of every trace line, and the local time behind it. Not for several threads at once.
#pragma once

#include <sys/types.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <string_view>

#include "mcucutil.h"

namespace ORVE_MCUC {

// "[01/02/2024 10:20:30.456 pid=812 uuid=0x0] ": made anew only when the second changes, because asking for
// the time zone and the local time costs as much as writing a line.
class TraceStamp {
 public:
  explicit TraceStamp(pid_t processId) : processId_(processId) {}

  // The stamp of a moment; valid until the next call.
  std::string_view at(const timespec& now) {
    turnTo(now.tv_sec);
    putDigits(milliseconds_, static_cast<unsigned>(now.tv_nsec / 1'000'000), 3);
    return {text_.data(), length_};
  }

  // Local time of that second; all zero when the calendar has no such second.
  const tm& local(time_t second) {
    turnTo(second);
    return local_;
  }

 private:
  void turnTo(time_t second) {
    if (length_ != 0 && second == second_) return;
    second_ = second;
    local_ = localTime(second);
    render();
  }

  void render() {
    char* to = text_.data();
    *to++ = '[';
    to = putDigits(to, static_cast<unsigned>(local_.tm_mon + 1), 2, '/');
    to = putDigits(to, static_cast<unsigned>(local_.tm_mday), 2, '/');
    to = putYear(to, int64_t{local_.tm_year} + 1900);
    *to++ = ' ';
    to = putDigits(to, static_cast<unsigned>(local_.tm_hour), 2, ':');
    to = putDigits(to, static_cast<unsigned>(local_.tm_min), 2, ':');
    to = putDigits(to, static_cast<unsigned>(local_.tm_sec), 2, '.');
    milliseconds_ = to;
    to = put(to + 3, " pid=");
    to = std::to_chars(to, text_.data() + text_.size(), processId_).ptr;
    to = put(to, " uuid=0x0] ");
    length_ = static_cast<std::size_t>(to - text_.data());
  }

  char* putYear(char* to, int64_t year) {
    if (year >= 0 && year <= 9999) return putDigits(to, static_cast<unsigned>(year), 4);
    return std::to_chars(to, text_.data() + text_.size(), year).ptr;
  }

  static char* put(char* to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
  }
  static char* putDigits(char* to, unsigned value, std::size_t count) {
    for (std::size_t i = count; i-- > 0; value /= 10) to[i] = static_cast<char>('0' + value % 10);
    return to + count;
  }
  static char* putDigits(char* to, unsigned value, std::size_t count, char separator) {
    to = putDigits(to, value, count);
    *to++ = separator;
    return to;
  }

  pid_t processId_;
  time_t second_ = 0;
  tm local_{};
  std::array<char, 80> text_{};  // 66 characters with the longest year and process id
  char* milliseconds_ = text_.data();
  std::size_t length_ = 0;
};

}  // namespace ORVE_MCUC
