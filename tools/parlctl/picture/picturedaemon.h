// What the picture verbs ask of a daemon.
#pragma once

#include "gammatables.h"
#include "patternplan.h"
#include "peer/peer.h"

namespace parlctl {

// A byte on the FPGA bus.
uint8_t fpgaByte(peer::Peer& daemon, uint32_t address);

// What the FPGA maps pixels by: the mark in the place of a bit depth says whether it is an HDR curve.
struct LoadedCurve {
  uint8_t enable = 0;
  uint8_t mark = 0;
  uint16_t white = 0;  // light of the last red entry

  bool isHdr() const { return enable == 0x58; }
};
LoadedCurve loadedCurve(peer::Peer& daemon);

// The three tables behind the registers of a bank: 12-bit ones are those that pixels go through.
GammaTables readGamma(peer::Peer& daemon, bool tenBit);

// The generator's registers up to what the FPGA takes.
PatternBytes readPattern(peer::Peer& daemon);
// Size of the screen as the generator has it, from the FPGA.
WallSize wallSize(peer::Peer& daemon);

}  // namespace parlctl
