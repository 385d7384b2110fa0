#include "allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t counted = 0;

}  // namespace

std::size_t allocations() {
  return counted;
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc)
void* operator new(std::size_t size) {
  ++counted;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
// NOLINTEND(cppcoreguidelines-no-malloc)
