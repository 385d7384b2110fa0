#include "workending.h"

#include <atomic>

namespace ORVE_MCUC {
namespace {

constinit std::atomic<bool> g_ending{false};

}  // namespace

void setWorkEnding(bool ending) {
  g_ending.store(ending, std::memory_order_relaxed);
}
bool isWorkEnding() {
  return g_ending.load(std::memory_order_relaxed);
}

}  // namespace ORVE_MCUC
