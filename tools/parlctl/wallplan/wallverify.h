// Whether the daemon has cut its output as it should: what the FPGA, or the flash, holds beside what the
// calculation gives.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "peer/frame.h"
#include "wallplan.h"

namespace parlctl {

// A way to read FPGA registers, or their saved copy. read: an address on the FPGA bus and a length up to
// 2048; throws peer::Error when the way is closed.
struct ReadBack {
  std::string name;
  std::function<peer::Bytes(uint32_t, std::size_t)> read;
};

// The first of the ways that gives windows and tables. A way that gives nothing but zeros is the last choice,
// because that is also what the daemon says of an FPGA that it cannot read. Throws peer::Error (NoDaemon)
// when there is none.
const ReadBack& openWay(const std::vector<ReadBack>& ways);

// Which registers are compared. An advanced configuration stores the output size (0x1EC) and saves it, and
// the FPGA gets it with the next start.
struct Scope {
  bool outputSize = true;
  const char* text() const {
    return outputSize ? "output and screen size, windows, card counts, tables"
                      : "screen size, windows, card counts, tables";
  }
};
inline Scope scopeInFpga(const WallPlan& plan) {
  return {plan.smart().has_value()};
}

// Where the FPGA differs from the plan; nowhere: `expected` is empty.
struct Difference {
  std::string place;  // "port 0, window", "output size"
  std::string expected;
  std::string found;

  bool none() const { return expected.empty(); }
  std::string text() const { return place + ": expected " + expected + ", found " + found; }
};

// The first difference: sizes, then windows and counts of the ports before their tables, in the order of the
// ports.
Difference firstDifference(const WallPlan& plan, const ReadBack& way, Scope scope = {});

// The last entry of the last port's table that a calculation of the plan writes: an FPGA bus address.
uint32_t lastEntryAddress(const WallPlan& plan);

// Where the flash keeps what lies at these FPGA addresses: those that firstDifference reads.
uint32_t savedAt(uint32_t fpgaAddress);

}  // namespace parlctl
