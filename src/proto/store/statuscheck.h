// A check of status registers: reads them, compares them with what was read last, tells somebody when they
// differ, and remembers them.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "logwords.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {

// Registers that are read together, at most kLongestBlock.
inline constexpr std::size_t kLongestBlock = 8;
struct StatusBlock {
  uint32_t fpgaRegister;
  std::size_t length;
};

// What a check has read, its blocks one behind the other. A block that could not be read has the value of the
// last time, so that it is no change.
struct StatusReading {
  std::span<const uint8_t> bytes;
  uint32_t blocksRead = 0;  // bit i: block i

  bool hasRead(std::size_t block) const { return (blocksRead >> block & 1) != 0; }
};

// Reads the blocks into now, which holds the values of the last time.
StatusReading readStatus(std::span<const StatusBlock> blocks, std::span<uint8_t> now);

// What tells of a change, between its two lines; the number that the first may name is the first byte read.
template <class Tell>
auto framed(const SectionWords& words, Tell tell) {
  return [&words, tell](const StatusReading& now) {
    LogSection section(words, now.bytes.front());
    tell(now);
  };
}

// Calls tell(now) when now is not what it was last, and then remembers it.
template <std::size_t N, class Tell>
void compareStatus(ByteImage<N>& last, const StatusReading& now, Tell tell) {
  const auto was = last.bytes();
  if (std::equal(was.begin(), was.end(), now.bytes.begin())) return;
  tell(now);
  last.template put<0>(now.bytes.template first<N>());
}

// The same for registers. Whether all of them were read.
template <std::size_t N, std::size_t Blocks, class Tell>
bool checkStatus(ByteImage<N>& last, const StatusBlock (&blocks)[Blocks], Tell tell) {
  auto now = last.bytes();
  const StatusReading reading = readStatus(blocks, now);
  compareStatus(last, reading, tell);
  return reading.blocksRead == (1U << Blocks) - 1;
}

}  // namespace ORVE_MCUC
