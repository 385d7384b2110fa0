// Files of the board directory.
#pragma once

#include <cstddef>
#include <string>

namespace simboard {

// Opens a file for reading and writing, created and grown to size as a sparse file. -1: not possible.
int openSized(const std::string& name, std::size_t size);

// The first size bytes of an open file, mapped shared, in the place of a mapping of this size or anywhere.
// Null: not possible.
void* mapShared(int file, std::size_t size, void* before = nullptr);

// Makes an open file all zero and sparse; who has it open or mapped sees the same file, cleared.
bool clearFile(int file);

// Gives an open file the contents of another and leaves the holes of that one holes. What the file held
// before is gone; it does not become shorter.
bool copyContents(int from, int to);

}  // namespace simboard
