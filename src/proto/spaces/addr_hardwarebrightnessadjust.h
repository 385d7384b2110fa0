// The brightness space and what the rest of the daemon asks of the brightness control. Each function may be
// called from any thread.
#pragma once

#include <cstdint>
#include <span>

#include "calc/brightnesscontrol.h"

namespace ORVE_MCUC {

class Addr_HardWareBrightnessAdjust {
 public:
  // The control on the board; deleted, it starts anew as after power-on. Only while nothing else uses it.
  static BrightnessControl& control();
  static void deleteInstance();

  // A write to a register of the space.
  static void SetBrightnessAdjustTable(uint32_t registerAddress, std::span<const uint8_t> data);

  // The serial time-out of the feature parameters, in seconds: one that is not 0 and has changed is taken,
  // and the brightness parameters are saved.
  static void takeSerialTimeout(uint8_t seconds) { control().takeSerialTimeout(seconds); }
  // The external serial controller is alive.
  static void heartbeat() { control().heartbeat(); }
  static void SaveBrightnessPara() { control().SaveBrightnessPara(); }

  // Writes a register of receiving cards; port 255 with card 65535 are all. LSD is told a global brightness
  // as well.
  static void NewSendReceiveCardPara(uint32_t registerAddress, uint8_t port, uint16_t card,
                                     std::span<const uint8_t> data);
};

}  // namespace ORVE_MCUC
