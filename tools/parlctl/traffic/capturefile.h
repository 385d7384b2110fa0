// Captured requests and what was replied, as lines of JSON.
#pragma once

#include <vector>

#include "result.h"
#include "tracerequests.h"

namespace parlctl {

// The first line of a file, and one line for a request.
std::string captureHead();
std::string captureLine(const TracedRequest& request);
// Throws peer::Error (Usage) when the file cannot be read or is none of these, with the number of the line.
std::vector<TracedRequest> readCapture(const std::string& path);

}  // namespace parlctl
