#include "calc/brightnesspoll.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kSecond = 5;
constexpr uint32_t kNodeCheck = 10;
constexpr uint32_t kLastTick = 99;

}  // namespace

void BrightnessPoll::tick(BrightnessControl& control) {
  ++TimesCnt;
  const bool second = TimesCnt % kSecond == 0;
  // A stored file that could not be read is asked for again.
  if (firstUp == 0 || (second && !control.loaded())) control.UpdataBrightnessPara();
  firstUp = 1;
  if (second) {
    control.SeiralComErrorProcess();
    control.countSecond();
  }
  if (TimesCnt % kNodeCheck == 0) control.TimeToOver_Handler();
  if (TimesCnt > kLastTick) {
    TimesCnt = 1;
    control.startAutomaticReading();
  }
  if (TimesCnt % kSecond != 0) return;
  control.ProgrammableBrightnessAdjust();
  control.AutoBrightnessAdjust();
  control.MixBrightnessAdjust();
}

}  // namespace ORVE_MCUC
