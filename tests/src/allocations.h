// Counts what operator new is asked for, in the whole program that links this.
#pragma once

#include <cstddef>

// Of the calling thread, so far.
std::size_t allocations();
