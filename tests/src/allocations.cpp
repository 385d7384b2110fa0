#include "allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t counted = 0;
thread_local std::size_t failing = 0;  // number of the allocation that fails

}  // namespace

std::size_t allocations() {
  return counted;
}

bool failAllocation(std::size_t n, const std::function<void()>& step) {
  failing = n > 0 ? counted + n : 0;
  try {
    step();
  } catch (...) {
    failing = 0;
    throw;
  }
  const bool failed = failing > 0 && counted >= failing;
  failing = 0;
  return failed;
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc)
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return ++counted == failing ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory != nullptr) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
// NOLINTEND(cppcoreguidelines-no-malloc)
