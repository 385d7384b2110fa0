// What a file or standard input holds, whole.
#pragma once

#include <istream>
#include <string>

#include "peer/frame.h"

namespace parlctl {

// From one byte to `most`. Throws peer::Error (Usage) where there is nothing to read, or more than that.
peer::Bytes fileBytes(const std::string& path, std::size_t most);
// The same of a stream, which the name stands for in the words.
peer::Bytes streamBytes(std::istream& from, const std::string& name, std::size_t most);

}  // namespace parlctl
