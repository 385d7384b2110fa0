#include "board_journal.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <mutex>

#include "platform/board.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr char kStartMark[] = "PARLEND_BOARD_STARTED_US";
constexpr std::size_t kBytesShown = 64;
constexpr std::size_t kUsualLine = 192;

std::atomic<JournalLevel> journalLevel{JournalLevel::Off};
std::atomic<void (*)(std::string_view)> looks{nullptr};
int file = -1;
std::mutex fileLock;  // stamps do not go backwards from line to line
long long startedUs = 0;

}  // namespace

bool openJournal(JournalLevel level, bool goOn) {
  const char* first = std::getenv(kStartMark);
  startedUs = goOn && first != nullptr ? std::strtoll(first, nullptr, 10) : board_monotonic_us();
  setenv(kStartMark, std::to_string(startedUs).c_str(), 1);
  const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | (goOn ? 0 : O_TRUNC);
  file = open(path("hw/journal.log").c_str(), flags, 0600);
  if (file < 0) return false;
  // A board that keeps no journal has an empty one, not that of an earlier start.
  journalLevel = level;
  return true;
}

void closeJournal() {
  journalLevel = JournalLevel::Off;
  const std::lock_guard guard(fileLock);
  if (file >= 0) close(file);
  file = -1;
}

bool journalsWrites() {
  return journalLevel.load(std::memory_order_relaxed) != JournalLevel::Off;
}
bool journalsReads() {
  return journalLevel.load(std::memory_order_relaxed) == JournalLevel::All;
}

void onJournal(void (*look)(std::string_view line)) {
  looks = look;
}

JournalLine::JournalLine(const char* call) {
  text_.reserve(kUsualLine);
  text_ = call;
}

JournalLine::~JournalLine() {
  if (const auto look = looks.load()) look(text_);
  const std::lock_guard guard(fileLock);
  const long long us = board_monotonic_us() - startedUs;
  char stamp[48];
  char lineEnd = '\n';
  const int length = std::snprintf(stamp, sizeof stamp, "%lld.%06lld ", us / 1'000'000, us % 1'000'000);
  const iovec pieces[] = {
      {stamp, static_cast<std::size_t>(length)}, {text_.data(), text_.size()}, {&lineEnd, 1}};
  // A journal on a full disk is no reason to stop the board.
  [[maybe_unused]] const auto written = writev(file, pieces, std::size(pieces));
}

JournalLine& JournalLine::word(std::string_view text) {
  text_ += ' ';
  // A text of a peer's does not begin a line of its own.
  for (const char c : text) text_ += c == '\n' || c == '\r' || c == '\0' ? '?' : c;
  return *this;
}

JournalLine& JournalLine::number(long long value) {
  return word(std::to_string(value));
}

JournalLine& JournalLine::address(uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lx", static_cast<unsigned long>(value));
  return word(text);
}

JournalLine& JournalLine::bytes(std::span<const unsigned char> data) {
  static constexpr char kDigits[] = "0123456789abcdef";
  if (data.empty()) return *this;
  const auto shown = data.first(std::min(data.size(), kBytesShown));
  text_ += ' ';
  for (const unsigned char byte : shown) {
    text_ += kDigits[byte >> 4];
    text_ += kDigits[byte & 0x0F];
  }
  if (data.size() > shown.size()) text_ += '+' + std::to_string(data.size() - shown.size());
  return *this;
}

JournalLine& JournalLine::failedIf(bool failed) {
  if (failed) text_ += " failed";
  return *this;
}

}  // namespace simboard
