// A check of status registers: reads them, compares them with what was read last, tells somebody when they
// differ, and remembers them.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

// Registers that are read together, at most kLongestBlock.
inline constexpr std::size_t kLongestBlock = 8;
struct StatusBlock {
  uint32_t fpgaRegister;
  std::size_t length;
};

// The Info lines around the pushes of a change. With afterValue, the first line goes on with the first byte
// read and that text.
struct StatusWords {
  const char* begin;
  const char* finish;
  const char* afterValue = nullptr;
};
void logChange(const StatusWords& words, std::span<const uint8_t> now);
void logTold(const StatusWords& words);

// Reads the blocks one behind the other into now. What cannot be read keeps the value that now has, so that
// it is no change. Whether everything was read.
bool readStatus(std::span<const StatusBlock> blocks, std::span<uint8_t> now);

// What tells of a change, between its two lines.
template <class Tell>
auto framed(const StatusWords& words, Tell tell) {
  return [&words, tell](std::span<const uint8_t> now) {
    logChange(words, now);
    tell(now);
    logTold(words);
  };
}

// Calls tell(now) when now is not what it was last, and then remembers it.
template <std::size_t N, class Tell>
void compareStatus(ByteImage<N>& last, std::span<const uint8_t, N> now, Tell tell) {
  const auto was = last.bytes();
  if (std::equal(was.begin(), was.end(), now.begin())) return;
  tell(std::span<const uint8_t>(now));
  last.template put<0>(now);
}

// The same for registers. Whether all of them were read.
template <std::size_t N, class Tell>
bool checkStatus(ByteImage<N>& last, std::span<const StatusBlock> blocks, Tell tell) {
  auto now = last.bytes();
  const bool complete = readStatus(blocks, now);
  compareStatus(last, std::span<const uint8_t, N>(now), tell);
  return complete;
}

}  // namespace ORVE_MCUC
