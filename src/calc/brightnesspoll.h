// Divides the tick of 200 ms into the periods of the brightness control.
#pragma once

#include <cstdint>

#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {

class BrightnessPoll {
 public:
  // One tick: every 5th is a second, every 10th a node time check, and every 99th starts a reading of the
  // automatic mode. The adjustments follow every second, but not on the tick where the counter begins anew.
  void tick(BrightnessControl& control);

 private:
  uint8_t firstUp = 0;
  uint32_t TimesCnt = 0;
};

}  // namespace ORVE_MCUC
