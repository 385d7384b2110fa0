// Small things that every part of the daemon uses: pauses, local time and bytes as text.
#pragma once

#include <ctime>

namespace ORVE_MCUC {

// Pauses the calling thread; nothing for counts below 1.
void Delay(int milliseconds);
void DelayMicroseconds(int microseconds);

// Length of every pause in percent, 100 unless a test shortens them (0: none).
void setDelayScale(int percent);

// Local time of that second in the zone that is set now, which may be another than at the last call; all zero
// when the calendar has no such second. Any thread.
tm localTime(time_t second);

// Renders count bytes as "0A FF ": two upper-case digits and a blank each, then a zero. text is emptied
// first. Returns the number of characters, 3 * count; 0 when there is nothing to render or the text and its
// zero do not fit into textSize bytes.
int Bytes2String(const char* source, int count, char* text, int textSize);

// Opens /dev/null in place of each standard stream (0, 1, 2) that is closed. Called first thing in main:
// otherwise the next file that is opened would pass for standard output, and log lines would be echoed into
// it.
void openMissingStandardStreams();

}  // namespace ORVE_MCUC
