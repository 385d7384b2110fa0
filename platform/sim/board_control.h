// hw/control.bin: clock offset, faults, power cut and sensor readings, which other processes may change at
// any time.
#pragma once

#include <cstdint>
#include <optional>

#include "simboard.h"

namespace simboard {

// Maps the page; new sensors get their readings of board.conf. False: not mapped. The page of a board that
// was left stays mapped until the next one takes its place: threads may still look at it.
bool openControl();

inline constexpr uint32_t kEveryCall = 0xFFFFFFFF;

// How the calls of a kind fail.
struct FaultPlan {
  uint32_t calls = 1;  // so many fail
  uint32_t after = 0;  // so many pass before
  // Only calls that touch these addresses count (FPGA, flash and factory copy); 0, 0: all.
  uint32_t first = 0;
  uint32_t last = 0;
};
void setFault(Fault kind, const FaultPlan& plan);
// What is left of it.
FaultPlan faultLeft(Fault kind);

// The power goes at a flash write, counted from now; 0: it stays.
struct PowerCut {
  enum Done : uint32_t { Nothing, All, Sectors };
  uint32_t atWrite = 0;
  Done done = Nothing;
  uint32_t sectors = 0;  // so many pieces of 512 bytes from the write's beginning are done
};
void setPowerCut(const PowerCut& cut);
uint32_t writesBeforePowerCut();

// Counts a flash write. The power goes at this one: how many of its bytes are done.
std::optional<uint32_t> takePowerCut(uint32_t length);

// Seconds between the host's clock and the board's.
int64_t clockOffset();
bool setClockOffset(int64_t seconds);

void setSensorLux(std::size_t index, uint32_t lux);

}  // namespace simboard
