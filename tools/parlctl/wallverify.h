// Whether the daemon has cut its output as it should: what the FPGA holds beside what the calculation gives.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "peer/frame.h"
#include "wallplan.h"

namespace parlctl {

// A way to read FPGA registers back. read: an address on the FPGA bus and a length up to 2048; throws
// peer::Error when the way is closed.
struct ReadBack {
  std::string name;
  std::function<peer::Bytes(uint32_t, std::size_t)> read;
};

// The first of the ways that gives both the port windows and the port tables; throws peer::Error (NoDaemon)
// when none does.
const ReadBack& openWay(const std::vector<ReadBack>& ways);

// Where the FPGA differs from the plan; nowhere: `expected` is empty.
struct Difference {
  unsigned port = 0;
  std::string what;  // "window", "entry 12"
  std::string expected;
  std::string found;

  bool none() const { return expected.empty(); }
  std::string text() const;
};

// The first difference: windows of the ports before their tables, both in the order of the ports.
Difference firstDifference(const WallPlan& plan, const ReadBack& way);

}  // namespace parlctl
