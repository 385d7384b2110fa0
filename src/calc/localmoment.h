// A moment of the local clock as the brightness plans see it. One reading of the clock fills all fields, so
// that midnight cannot fall between them.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

struct LocalMoment {
  int year = 0;  // since 2000, negative before
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int weekday = 7;        // 1 Sunday .. 7 Saturday
  int32_t utcOffset = 0;  // seconds that the local clock is ahead of UTC
  bool operator==(const LocalMoment&) const = default;
};

// Two decimal digits in a byte; 0 to 99.
constexpr uint8_t toBcd(int value) {
  return static_cast<uint8_t>(value / 10 * 16 + value % 10);
}
constexpr int fromBcd(uint8_t bcd) {
  return bcd / 16 * 10 + bcd % 16;
}

// A time of day in BCD, as a key that grows with it.
constexpr uint16_t timeKey(uint8_t hour, uint8_t minute) {
  return static_cast<uint16_t>(hour * 0x80 + minute);
}
constexpr uint16_t timeKey(const LocalMoment& now) {
  return timeKey(toBcd(now.hour), toBcd(now.minute));
}
// Whether a clock ever shows this time.
constexpr bool isTimeOfDay(uint8_t hour, uint8_t minute) {
  const auto digits = [](uint8_t bcd) { return bcd % 16 < 10 && bcd / 16 < 10; };
  return digits(hour) && digits(minute) && fromBcd(hour) < 24 && fromBcd(minute) < 60;
}

constexpr int floorDivide(int value, int divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// The weekday as the running plan judges it, from the date: 1 Monday .. 7 Sunday. January and February are
// months 13 and 14 of the year before.
constexpr int weekdayOfDate(const LocalMoment& date) {
  const int month = date.month < 3 ? date.month + 12 : date.month;
  const int year = date.month < 3 ? date.year - 1 : date.year;
  const int days = date.day + 2 * month + 3 * (month + 1) / 5 + year + floorDivide(year, 4) -
                   floorDivide(year, 100) + floorDivide(year, 400);
  return (days % 7 + 7) % 7 + 1;
}
static_assert(weekdayOfDate({.year = 24, .month = 2, .day = 29}) == 4);  // a Thursday

// Days since 1 January 2000.
constexpr int64_t daysOf(const LocalMoment& date) {
  const int year = date.month < 3 ? date.year - 1 : date.year;
  const int month = (date.month + 9) % 12;  // from March
  return int64_t{365} * year + floorDivide(year, 4) - floorDivide(year, 100) + floorDivide(year, 400) +
         (153 * month + 2) / 5 + date.day + 59;
}
// Seconds since 1 January 2000 as the local clock counts them.
constexpr int64_t secondsOf(const LocalMoment& now) {
  return ((daysOf(now) * 24 + now.hour) * 60 + now.minute) * 60 + now.second;
}
constexpr int64_t utcSecondsOf(const LocalMoment& now) {
  return secondsOf(now) - now.utcOffset;
}
static_assert(daysOf({}) == 0 && daysOf({.year = 0, .month = 3, .day = 1}) == 60);
static_assert(daysOf({.year = 1}) == 366 && daysOf({.year = -1}) == -365);

// The moment that lies so many local seconds after 1 January 2000; no earlier than that day.
constexpr LocalMoment momentOf(int64_t localSeconds, int32_t utcOffset = 0) {
  const int64_t days = localSeconds / 86400;
  const int rest = static_cast<int>(localSeconds % 86400);
  LocalMoment moment;
  moment.hour = rest / 3600;
  moment.minute = rest / 60 % 60;
  moment.second = rest % 60;
  moment.utcOffset = utcOffset;
  moment.weekday = static_cast<int>((days + 6) % 7) + 1;
  int64_t left = days;
  const auto leap = [](int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); };
  while (left >= (leap(moment.year) ? 366 : 365)) left -= leap(moment.year++) ? 366 : 365;
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const auto length = [&] {
    return kDays[moment.month - 1] + (moment.month == 2 && leap(moment.year) ? 1 : 0);
  };
  while (left >= length()) {
    left -= length();
    ++moment.month;
  }
  moment.day = static_cast<int>(left) + 1;
  return moment;
}

static_assert(momentOf(secondsOf({.year = 24, .month = 12, .day = 31, .hour = 23, .weekday = 3})) ==
              LocalMoment{.year = 24, .month = 12, .day = 31, .hour = 23, .weekday = 3});

}  // namespace ORVE_MCUC
