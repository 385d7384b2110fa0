// The periodic poll: divides the tick of the flag and status thread into the periods of the brightness
// control.
#pragma once

#include "calc/brightnesspoll.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {

class Proc_Poll {
 public:
  static Proc_Poll* getInstance();
  static void deleteInstance();

  // Once a tick, on the flag and status thread.
  void AutoBrightnessadjust();

  // The display warm-up that a peer has asked for; any thread. They are kept, nothing runs a warm-up.
  RelaxedByte ChangeParaForKeepWarmUpMode;
  RelaxedByte ParaForKeepWarmUpModeTimeData;

 private:
  Proc_Poll() = default;
  BrightnessPoll poll_;
};

}  // namespace ORVE_MCUC
