// Commands that the card takes as a write of one byte.
#pragma once

#include <string>

#include "maps/commands.h"
#include "maps/registermap.h"
#include "options.h"

namespace parlctl {

// Sends it and prints what the acknowledge means. Throws peer::Error as the peer does.
inline void giveCommand(const Options& options, peer::Peer& daemon, uint32_t command,
                        const std::string& meaning) {
  const uint32_t address = ORVE_MCUC::reg::kCommand + command;
  daemon.write(address, {1});
  options.print({{{"address", hexAddress(address)}}, "accepted: " + meaning, Outcome::Accepted});
}

}  // namespace parlctl
