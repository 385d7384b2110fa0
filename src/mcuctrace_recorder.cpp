// Composition of lines: values as text, without allocation and without a format string.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <type_traits>

#include "mcuctrace.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kNeverFilled = 64;

}  // namespace

CTrace::CLogRecorder::CLogRecorder(char* buffer, std::size_t size) : m_lpszBuf(buffer), m_dwSize(size) {
  reset();
}

void CTrace::CLogRecorder::reset() {
  m_dwPos = 0;
  m_bHex = 0;
  if (m_dwSize > 0) m_lpszBuf[0] = '\0';
}

void CTrace::CLogRecorder::advance(const char* text) {
  if (text != nullptr) advance(std::string_view(text));
}

void CTrace::CLogRecorder::advance(std::string_view text) {
  // The end may already lie within the bytes that are never filled; a difference would then wrap.
  if (m_dwSize <= kNeverFilled || m_dwPos >= m_dwSize - kNeverFilled) return;
  if (text.empty()) return;  // which may have no address
  const std::size_t count = std::min(text.size(), m_dwSize - kNeverFilled - m_dwPos);
  std::memcpy(m_lpszBuf + m_dwPos, text.data(), count);
  m_dwPos += count;
  m_lpszBuf[m_dwPos] = '\0';
}

template <class Unsigned>
void CTrace::CLogRecorder::appendHex(Unsigned value, std::size_t minimumDigits) {
  std::array<char, 2 * sizeof value> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  constexpr std::string_view kZeros = "0000000000000000";
  advance(kZeros.substr(0, count < minimumDigits ? minimumDigits - count : 0));
  advance(std::string_view(digits.data(), count));
}

template <class Integer>
CTrace::CLogRecorder& CTrace::CLogRecorder::append(Integer value, HexForm form) {
  if (m_bHex != 0) {
    m_bHex = 0;
    advance(form.prefix);
    appendHex(static_cast<std::make_unsigned_t<Integer>>(value), form.minimumDigits);
    return *this;
  }
  std::array<char, 24> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  advance(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(int value) {
  return append(value, {"", 1});
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(unsigned int value) {
  return append(value, {"0x", 8});
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(long value) {
  return append(value, {"0x", 1});
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(unsigned long value) {
  return append(value, {"0x", 1});
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(long long value) {
  return append(value, {"0x", 1});
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(unsigned long long value) {
  return append(value, {"0x", 1});
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(double value) {
  std::array<char, 320> digits;  // the longest double has 309 digits before the point
  const char* end =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 6).ptr;
  advance(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(const char* text) {
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(std::string_view text) {
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(const void* address) {
  advance(std::string_view("0x"));
  appendHex(reinterpret_cast<uintptr_t>(address), 1);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(Ordix base) {
  m_bHex = base == hex;
  return *this;
}

TraceLine::TraceLine(int level, std::string_view source, int line)
    : m_level(level), m_recorder(m_line.data() + CTrace::kStampRoom, CTrace::kLineSize) {
  m_recorder << source << std::string_view(" : ") << line << std::string_view(" ");
}

TraceLine::~TraceLine() {
  CTrace::instance()->write(m_level, m_line, m_recorder.length());
}

}  // namespace ORVE_MCUC
