// Configuration files of the receiving cards as text: a line a register write, a line a pause. Values only.
//
//   # comment
//   0x02000001 = 80
//   0x03000000 = 00 01 02 03     bytes, up to 4096 of an item
//              + 04 05 06 07     more bytes of the same item
//   pause 50                     milliseconds behind the item before, up to 65535
//   reserved = 00 ...            the 30 reserved bytes of the head, where they are not all zero
#pragma once

#include <span>
#include <string>

#include "peer/frame.h"

namespace parlctl {

// Throws peer::Error (Usage) that names the line.
peer::Bytes compileCabFile(const std::string& text);
// Compiling gives the same bytes again, but for what lies behind the last item. Throws peer::Error (Usage)
// for a file whose items do not lie within it.
std::string decompileCabFile(std::span<const uint8_t> file);

}  // namespace parlctl
