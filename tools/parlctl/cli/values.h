// Values as people write and read them. All of what parses throws peer::Error (Usage), naming the text.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace parlctl {

// A decimal number or a hexadecimal one after 0x; not with a leading zero (nobody knows what it means) nor
// above the limit.
uint32_t number(const std::string& text, uint32_t limit = 0xFFFFFFFF);
// The same from 1 to the limit.
uint32_t fromOne(const std::string& text, uint32_t limit);
// "4x6": both from 1 to the limit.
std::pair<uint32_t, uint32_t> product(const std::string& text, uint32_t limit);
// "0-3,7": output ports from 0 to 15.
std::vector<unsigned> portList(const std::string& text);
// "0x100-0x1FF", or one number.
std::pair<uint32_t, uint32_t> range(const std::string& text, uint32_t limit = 0xFFFFFFFF);

// Seconds, with or without a fraction, above 0 and up to 1e9.
std::chrono::milliseconds duration(const std::string& text);

// 0x and eight digits.
std::string hexAddress(uint32_t address);
// "1 card", "2 cards".
std::string countText(std::size_t count, const char* what);
// "0-3, 7"; "none" for an empty list. The numbers rise.
std::string rangesText(const std::vector<unsigned>& numbers);
// This moment, or so many seconds since 1970, with date and zone: "2024-01-02T10:20:30.456+01:00".
std::string timeText();
std::string timeText(int64_t seconds);

}  // namespace parlctl
