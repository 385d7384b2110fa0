#include "calc/rvplayback.h"

#include <algorithm>

namespace ORVE_MCUC {

RvPlan planOf(std::span<const uint8_t> file) {
  RvPlan plan;
  plan.bytes = std::min(file.size(), rv::kFileHeadBytes);
  plan.end = forEachRvItem(file, [&plan](const RvItem& item) {
    ++plan.items;
    plan.bytes += rv::kItemHeadBytes + item.data.size();
    return playRvItem(
        item,
        [&plan](uint32_t, std::span<const uint8_t>) {
          ++plan.writes;
          return true;
        },
        [&plan](int milliseconds) {
          plan.pausesMs += static_cast<uint64_t>(milliseconds);
          return true;
        });
  });
  return plan;
}

}  // namespace ORVE_MCUC
