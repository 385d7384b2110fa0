// Date and time as six BCD bytes: year of the century, month, day, hour, minute, second.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "calc/localmoment.h"

namespace ORVE_MCUC {

inline constexpr std::size_t kClockBytes = 6;
using BcdClock = std::array<uint8_t, kClockBytes>;

// The moment that such bytes tell. A nibble above 9 counts as what it is.
LocalMoment momentOf(std::span<const uint8_t, kClockBytes> clock);
// Whether the Gregorian calendar has that day, and the day that time.
bool isInCalendar(const LocalMoment& time);

// The first three numbers of a text, which any number of separators stand between, as BCD of their last two
// digits. Fields that the text does not have stay; one that is no number is 0.
void takeBcdFields(std::string_view text, char separator, std::span<uint8_t, 3> fields);

}  // namespace ORVE_MCUC
