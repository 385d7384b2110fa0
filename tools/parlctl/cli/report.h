// Results that more than one noun shows: bundle takes them along.
#pragma once

#include "options.h"

namespace parlctl {

// Throw peer::Error as the peer does.
Result statusResult(const Options& options, peer::Peer& daemon);
Result doctorResult(const Options& options);

}  // namespace parlctl
