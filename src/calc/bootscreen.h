// How long the boot screen is shown while the receiving cards come up.
#pragma once

namespace ORVE_MCUC {

// The device's boot-screen time for the cards' power-on time, both in its own units.
constexpr unsigned bootScreenTime(unsigned powerOnTime) {
  constexpr unsigned kShownAnyway = 0x23;
  return powerOnTime <= kShownAnyway ? 0 : powerOnTime - kShownAnyway;
}

}  // namespace ORVE_MCUC
