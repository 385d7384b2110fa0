#include "calc/bcdclock.h"

#include <algorithm>

namespace ORVE_MCUC {
namespace {

constexpr bool isLeap(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}
constexpr int daysOfMonth(int year, int month) {
  constexpr int kDays[]{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
}

// The last two digits of a number at the beginning of a text.
int lastDigits(std::string_view text) {
  int value = 0;
  text.remove_prefix(std::min(text.find_first_not_of(" \t+"), text.size()));
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    value = (value * 10 + (c - '0')) % 100;
  }
  return value;
}

}  // namespace

LocalMoment momentOf(std::span<const uint8_t, kClockBytes> clock) {
  return {.year = fromBcd(clock[0]),
          .month = fromBcd(clock[1]),
          .day = fromBcd(clock[2]),
          .hour = fromBcd(clock[3]),
          .minute = fromBcd(clock[4]),
          .second = fromBcd(clock[5])};
}

bool isInCalendar(const LocalMoment& time) {
  const bool month = time.month >= 1 && time.month <= 12;
  return month && time.day >= 1 && time.day <= daysOfMonth(2000 + time.year, time.month) && time.hour < 24 &&
         time.minute < 60 && time.second < 60;
}

void takeBcdFields(std::string_view text, char separator, std::span<uint8_t, 3> fields) {
  for (uint8_t& field : fields) {
    const std::size_t begin = text.find_first_not_of(separator);
    if (begin == std::string_view::npos) return;
    text.remove_prefix(begin);
    const std::string_view number = text.substr(0, text.find(separator));
    field = toBcd(lastDigits(number));
    text.remove_prefix(number.size());
  }
}

}  // namespace ORVE_MCUC
