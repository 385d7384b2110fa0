// Traced requests for people and programs.
#pragma once

#include "result.h"
#include "tracerequests.h"

namespace parlctl {

// Time, who, what, acknowledge, data and microseconds in one line; error lines below it.
Result decoded(const TracedRequest& request);

}  // namespace parlctl
