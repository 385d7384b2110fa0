#include <ctime>
#include <iterator>

#include "driverutil.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"

namespace ORVE_MCUC {
namespace {

tm localNow() {
  timespec now{};
  board_clock(&now);
  return localTime(now.tv_sec);
}

// Replaces fields of the local time and sets the clock: one way for time, date and weekday.
template <class Change>
void setLocalTime(const char* name, Change change) {
  PARLEND_TRACE(kInfo) << name << " Start...";
  tm local = localNow();
  if (tracePasses(kInfo)) {
    char text[64] = {};
    asctime_r(&local, text);
    DriverUtil::chomp(text);
    PARLEND_TRACE(kInfo) << name << ": time = " << text;
  }
  change(local);
  const time_t seconds = mktime(&local);
  if (seconds == static_cast<time_t>(-1) || board_clock_set(seconds) != 0) {
    PARLEND_TRACE(kError) << "=== " << name << " ===the clock was not set.";
  }
  PARLEND_TRACE(kInfo) << name << " End.";
}

}  // namespace

unsigned char DriverUtil::ReadTime(unsigned char field) {
  const tm now = localNow();
  const int fields[] = {now.tm_year - 100, now.tm_mon + 1, now.tm_mday,    now.tm_hour,
                        now.tm_min,        now.tm_sec,     now.tm_wday + 1};
  return field < std::size(fields) ? static_cast<unsigned char>(fields[field])
                                   : static_cast<unsigned char>(0);
}

LocalMoment DriverUtil::ReadMoment() {
  const tm now = localNow();
  return {.year = now.tm_year - 100,
          .month = now.tm_mon + 1,
          .day = now.tm_mday,
          .hour = now.tm_hour,
          .minute = now.tm_min,
          .second = now.tm_sec,
          .weekday = now.tm_wday + 1,
          .utcOffset = static_cast<int32_t>(now.tm_gmtoff)};
}

void DriverUtil::WriteTime(unsigned char hour, unsigned char minute, unsigned char second) {
  setLocalTime("WriteTime", [&](tm& local) {
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_sec = second;
    local.tm_isdst = -1;
  });
}

void DriverUtil::WriteDate(unsigned char year, unsigned char month, unsigned char day) {
  setLocalTime("WriteDate", [&](tm& local) {
    local.tm_year = year + 100;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_isdst = -1;
  });
}

void DriverUtil::WriteWeekday(unsigned char weekday) {
  setLocalTime("WriteWeekday", [&](tm& local) { local.tm_wday = weekday; });
}

}  // namespace ORVE_MCUC
