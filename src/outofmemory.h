// What becomes of work that runs out of memory: it is given up and logged, and its thread goes on.
#pragma once

#include <new>

#include "mcuctrace.h"

namespace ORVE_MCUC {

// Runs a piece of work. False, after an Error line, when it ran out of memory; what it had done by then
// stays.
template <class Work>
bool withinMemory(const char* what, Work work) {
  try {
    work();
    return true;
  } catch (const std::bad_alloc&) {
    PARLEND_TRACE(kError) << "=== " << what << " ===out of memory, given up.";
    return false;
  }
}

}  // namespace ORVE_MCUC
