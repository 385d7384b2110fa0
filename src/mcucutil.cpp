#include "mcucutil.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>

#include "platform/board.h"

namespace ORVE_MCUC {
namespace {

constinit std::atomic<int> g_delayPercent{100};

void pause(std::chrono::microseconds length) {
  const auto scaled = length * g_delayPercent.load(std::memory_order_relaxed) / 100;
  if (scaled.count() > 0) board_pause(scaled.count());
}

constexpr std::array<char, 16> kHexDigits{'0', '1', '2', '3', '4', '5', '6', '7',
                                          '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};

}  // namespace

void Delay(int milliseconds) {
  pause(std::chrono::milliseconds(milliseconds));
}

void DelayMicroseconds(int microseconds) {
  pause(std::chrono::microseconds(microseconds));
}

void setDelayScale(int percent) {
  g_delayPercent.store(percent, std::memory_order_relaxed);
}

tm localTime(time_t second) {
  tzset();  // localtime_r alone keeps to the zone that it met first
  tm local{};
  localtime_r(&second, &local);
  return local;
}

int Bytes2String(const char* source, int count, char* text, int textSize) {
  if (text == nullptr || textSize <= 0) return 0;
  text[0] = '\0';
  if (source == nullptr || count <= 0 || int64_t{3} * count >= textSize) return 0;
  char* to = text;
  for (int i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(source[i]);
    *to++ = kHexDigits[byte >> 4];
    *to++ = kHexDigits[byte & 0xF];
    *to++ = ' ';
  }
  *to = '\0';
  return 3 * count;
}

void openMissingStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    // The lowest free descriptor is the one that is missing.
    if (fcntl(stream, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) return;
  }
}

}  // namespace ORVE_MCUC
