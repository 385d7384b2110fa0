// Files that people hand in.
#pragma once

#include <cstddef>
#include <string>

#include "peer/frame.h"

namespace parlctl {

// The whole of a file. Throws peer::Error (Usage) when it cannot be read or is longer than most bytes; of a
// file without an end no more than that is read.
peer::Bytes bytesOfFile(const std::string& path, std::size_t most);

}  // namespace parlctl
