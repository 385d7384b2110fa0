// The wall as the daemon knows it: its registers for the smart screen configuration.
#pragma once

#include "options.h"
#include "wallverify.h"

namespace parlctl {

// The requests below throw peer::Error as the peer does.

// Pixels of a receiving card, as the daemon measures it now.
CardSize cardSize(peer::Peer& daemon);
// What the configuration record says; nothing in it needs to be right.
struct Configured {
  SmartScreen screen;
  bool inForce;  // it configured the ports last, not an advanced configuration or tables
};
Configured configuredScreen(peer::Peer& daemon);
// Ports 0, 1, ... with a link, over copper or fiber, up to the first without; all when port 0 has none.
unsigned linkedPorts(peer::Peer& daemon);
// Copper links of ports 0..15 from the feature registers, of which at least 0x128 are given.
uint16_t copperLinks(std::span<const uint8_t> registers);
// Sends a configuration. Bytes of the record that do not belong to it stay as they are.
void submit(peer::Peer& daemon, const SmartScreen& screen);

struct Verdict {
  WallPlan plan;
  std::string way;        // how the FPGA was read
  Difference difference;  // none: verified
};

// Looks until the FPGA holds what the calculation gives for the screen with the daemon's card size, or until
// the time-out, at least 5 s, is over.
Verdict verify(const Options& options, peer::Peer& daemon, SmartScreen screen);

}  // namespace parlctl
