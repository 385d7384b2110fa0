// The handler of writes to the brightness space.
#include "process/tprocess.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"

namespace ORVE_MCUC {

int Tprocess::Sprocess_doAdjustBrightness(int lenth, char* data) {
  return handlePenetrate<doAdjustBrightnessKey>(lenth, data, [](const PenetrateInfo& info) {
    Addr_HardWareBrightnessAdjust::SetBrightnessAdjustTable(info.Register, info.data);
  });
}

}  // namespace ORVE_MCUC
