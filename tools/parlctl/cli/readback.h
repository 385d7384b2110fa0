// Whether what was written is there: bytes read back beside bytes expected.
#pragma once

#include <functional>
#include <span>

#include "peer/peer.h"
#include "result.h"

namespace parlctl {

// Where bytes differ; nowhere: Verified.
struct Comparison {
  Outcome outcome = Outcome::Unknown;
  std::string
      text;  // "verified: 4 bytes read back are as written", "mismatch: 0x02300012: written 03, read 00"
};

// Bytes read back behind those written to an address; fewer than written are a mismatch, too.
Comparison compareBytes(uint32_t address, std::span<const uint8_t> written, std::span<const uint8_t> found);

// Looks until it is Verified or the time is over, for what the daemon carries out behind its reply. look:
// gives what is there now; where it cannot (peer::Error other than NoDaemon and TimeOut) the comparison is
// Unknown and says why.
Comparison lookUntil(peer::milliseconds patience, const std::function<Comparison()>& look);

// Reads back what a write frame has written, with a read of the same place.
Comparison readBack(peer::Peer& daemon, const peer::Frame& written, peer::milliseconds patience);

}  // namespace parlctl
