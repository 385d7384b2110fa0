// The requests that command-line items of reg and card stand for.
#pragma once

#include <string>
#include <vector>

#include "access.h"
#include "peer/frame.h"

namespace parlctl {

// One item: a range or a value, in pieces of what its register takes at once.
struct Access {
  std::vector<peer::Frame> pieces;
  std::size_t size() const;
};

// All items are understood before the first is sent. Throw peer::Error: Usage (not an item, reading it does
// something), Acknowledge (the address is on no map, or the map does not allow the access).
std::vector<Access> readRequests(const AccessArguments& arguments);
std::vector<Access> writeRequests(const AccessArguments& arguments);

// What the request addresses, in words: a register of the sending card, or the card behind a port.
std::string targetName(const peer::Frame& frame);

}  // namespace parlctl
