#include "values.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <sstream>

#include "peer/board.h"
#include "peer/error.h"

namespace parlctl {

namespace {

[[noreturn]] void refuse(const std::string& text, const std::string& why) {
  throw peer::Error(peer::Failure::Usage, '\'' + text + "' " + why);
}

// Date and time of day, then the zone as +hh:mm, with what belongs between them.
std::string dated(std::time_t seconds, const std::string& fraction) {
  std::tm local{};
  localtime_r(&seconds, &local);
  std::array<char, 32> date{};
  std::array<char, 8> zone{};
  std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
  std::strftime(zone.data(), zone.size(), "%z", &local);
  return date.data() + fraction + std::string(zone.data(), 3) + ':' + (zone.data() + 3);
}

}  // namespace

uint32_t number(const std::string& text, uint32_t limit) {
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  const char* begin = text.data() + (hex ? 2 : 0);
  const char* end = text.data() + text.size();
  uint32_t value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value, hex ? 16 : 10);
  const bool leadingZero = !hex && text.size() > 1 && text[0] == '0';
  if (error == std::errc::invalid_argument || stop != end || leadingZero)
    refuse(text, "is not a number (decimal, or hexadecimal after 0x)");
  if (error != std::errc{} || value > limit) refuse(text, "is above " + std::to_string(limit));
  return value;
}

uint32_t fromOne(const std::string& text, uint32_t limit) {
  const uint32_t value = number(text, limit);
  if (value == 0) refuse(text, "is not from 1 to " + std::to_string(limit));
  return value;
}

std::pair<uint32_t, uint32_t> product(const std::string& text, uint32_t limit) {
  const std::size_t cross = text.find('x', 1);
  if (cross == std::string::npos) refuse(text, "is not two numbers with an x between");
  return {fromOne(text.substr(0, cross), limit), fromOne(text.substr(cross + 1), limit)};
}

std::pair<uint32_t, uint32_t> range(const std::string& text, uint32_t limit) {
  const std::size_t dash = text.find('-');
  const uint32_t first = number(text.substr(0, dash), limit);
  const uint32_t last = dash == std::string::npos ? first : number(text.substr(dash + 1), limit);
  if (last < first) refuse(text, "runs backwards");
  return {first, last};
}

std::vector<unsigned> portList(const std::string& text) {
  std::vector<unsigned> ports;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ',');) {
    const auto [first, last] = range(part, peer::kPorts - 1);
    for (uint32_t port = first; port <= last; ++port) ports.push_back(port);
  }
  if (ports.empty()) refuse(text, "names no port");
  return ports;
}

std::chrono::milliseconds duration(const std::string& text) {
  double seconds = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc{} || stop != text.data() + text.size() || !(seconds >= 0.001 && seconds <= 1e9))
    refuse(text, "is not a number of seconds");
  return std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000));
}

std::string hexAddress(uint32_t address) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", address);
  return text.data();
}

std::string countText(std::size_t count, const char* what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

std::string rangesText(const std::vector<unsigned>& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    text += (text.empty() ? "" : ", ") + std::to_string(numbers[i]);
    if (last > i) text += (last == i + 1 ? ", " : "-") + std::to_string(numbers[last]);
    i = last + 1;
  }
  return text.empty() ? "none" : text;
}

std::string timeText() {
  using namespace std::chrono;
  const auto now = system_clock::now().time_since_epoch();
  std::array<char, 8> fraction{};
  std::snprintf(fraction.data(), fraction.size(), ".%03u",
                static_cast<unsigned>(duration_cast<milliseconds>(now).count() % 1000));
  return dated(static_cast<std::time_t>(duration_cast<seconds>(now).count()), fraction.data());
}

std::string timeText(int64_t seconds) {
  return dated(static_cast<std::time_t>(seconds), "");
}

}  // namespace parlctl
