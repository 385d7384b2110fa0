// Counts what operator new is asked for, in the whole program that links this, and lets it run out of memory.
#pragma once

#include <cstddef>
#include <functional>

// Of the calling thread, so far.
std::size_t allocations();

// Runs a step whose n-th allocation, counted from 1, fails (0: none). False: it has fewer.
bool failAllocation(std::size_t n, const std::function<void()>& step);
