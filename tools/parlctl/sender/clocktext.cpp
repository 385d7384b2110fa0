#include "clocktext.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <optional>

#include "calc/bcdclock.h"
#include "peer/error.h"

namespace parlctl {

namespace {

using namespace ORVE_MCUC;
constexpr int64_t kNearSeconds = 30;

std::optional<LocalMoment> momentIn(std::span<const uint8_t> bytes) {
  const bool digits = bytes.size() == kClockBytes && std::ranges::all_of(bytes, [](uint8_t byte) {
                        return byte % 16 < 10 && byte / 16 < 10;
                      });
  if (!digits) return std::nullopt;
  const LocalMoment moment = momentOf(std::span<const uint8_t, kClockBytes>(bytes));
  return isInCalendar(moment) ? std::optional(moment) : std::nullopt;
}

// The pattern's digits (shown as 0) and separators; T may be a blank.
std::optional<std::array<int, kClockBytes>> fieldsIn(std::string text) {
  constexpr std::string_view kPattern = "0000-00-00T00:00:00";
  if (text.size() != kPattern.size()) return std::nullopt;
  if (text[10] == ' ') text[10] = 'T';
  std::string digits;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (kPattern[i] == '0' ? !digit : text[i] != kPattern[i]) return std::nullopt;
    if (digit) digits += text[i];
  }
  if (!digits.starts_with("20")) return std::nullopt;
  std::array<int, kClockBytes> fields{};
  for (std::size_t i = 0; i < fields.size(); ++i) fields[i] = std::stoi(digits.substr(2 * i + 2, 2));
  return fields;
}

std::string nowText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local);
  return text.data();
}

}  // namespace

std::string clockText(std::span<const uint8_t> bytes) {
  if (!momentIn(bytes)) return peer::toHex(bytes);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "20%02x-%02x-%02xT%02x:%02x:%02x", bytes[0], bytes[1], bytes[2],
                bytes[3], bytes[4], bytes[5]);
  return text.data();
}

peer::Bytes clockBytes(const std::string& text) {
  const auto fields = fieldsIn(text == "now" ? nowText() : text);
  peer::Bytes bytes;
  if (fields) std::ranges::transform(*fields, std::back_inserter(bytes), &toBcd);
  if (!momentIn(bytes))
    throw peer::Error(peer::Failure::Usage,
                      "'" + text + "' is no date and time from 2000 to 2099, as in 2024-02-29T23:59:58");
  return bytes;
}

bool clockIsNear(std::span<const uint8_t> set, std::span<const uint8_t> found) {
  const auto wanted = momentIn(set);
  const auto shown = momentIn(found);
  if (!wanted || !shown) return false;
  const int64_t later = secondsOf(*shown) - secondsOf(*wanted);
  return later >= 0 && later <= kNearSeconds;
}

}  // namespace parlctl
