#include "options.h"

#include <charconv>
#include <cstdio>
#include <iostream>

namespace parlctl {

peer::Peer Options::connect(uint32_t serviceCode) const {
  return {socketPath.empty() ? board().socketPath() : socketPath, serviceCode, peer::milliseconds(timeoutMs)};
}

ExitStatus exitStatus(peer::Failure failure) {
  switch (failure) {
    case peer::Failure::Usage:
    case peer::Failure::Board:
      return kUsage;
    case peer::Failure::NoDaemon:
    case peer::Failure::TimeOut:
      return kNoDaemon;
    case peer::Failure::Acknowledge:
      return kRefused;
    case peer::Failure::ShortReply:
    case peer::Failure::Mismatch:
      return kWrongReply;
  }
  return kUsage;
}

void print(const Options& options, const Json& object, const std::string& text) {
  std::cout << (options.json ? object.dump() : text)
            << std::endl;  // at once: somebody may be watching a pipe
}

std::string words(const Json& object) {
  if (object.is_null()) return "not told";
  std::string text;
  for (const auto& [key, value] : object.items()) {
    std::string name = key;
    std::replace(name.begin(), name.end(), '_', ' ');
    text += (text.empty() ? "" : ", ") + name;
    if (value.is_array()) {
      for (const Json& item : value) text += ' ' + item.dump();
      if (value.empty()) text += " -";
    } else {
      text += ' ' + (value.is_string() ? value.get<std::string>() : value.dump());
    }
  }
  return text;
}

uint32_t number(const std::string& text, uint32_t limit) {
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  const char* begin = text.data() + (hex ? 2 : 0);
  const char* end = text.data() + text.size();
  uint32_t value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value, hex ? 16 : 10);
  const bool leadingZero = !hex && text.size() > 1 && text[0] == '0';
  if (error == std::errc::invalid_argument || stop != end || leadingZero)
    throw peer::Error(peer::Failure::Usage,
                      "not a number (decimal, or hexadecimal after 0x): '" + text + "'");
  if (error != std::errc{} || value > limit)
    throw peer::Error(peer::Failure::Usage, "'" + text + "' is above " + std::to_string(limit));
  return value;
}

std::string hexAddress(uint32_t address) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", address);
  return text.data();
}

}  // namespace parlctl
