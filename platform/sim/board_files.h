// Files of the board directory.
#pragma once

#include <cstddef>
#include <string>

namespace simboard {

// Opens a file for reading and writing, created and grown to size as a sparse file. -1: not possible.
int openSized(const std::string& name, std::size_t size);

// The same, mapped shared. Null: not possible.
void* mapFile(const std::string& name, std::size_t size);

}  // namespace simboard
