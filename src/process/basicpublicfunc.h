// The board itself: its basic hardware page, its date and time.
#pragma once

#include <cstdint>
#include <span>

#include "calc/bcdclock.h"

namespace ORVE_MCUC {

class BasicPublicFunc {
 public:
  static BasicPublicFunc* getInstance();
  static void deleteInstance();

  // A write to a register of the hardware info space: the parts of the page that peers may change, in flash
  // and, where it has them, in the environment store. A page that cannot be read is not written.
  void SetHwBasicinfo(uint32_t hwRegister, std::span<const uint8_t> data);

  // Local date and time. Fields that the device does not tell stay as they are.
  void GetHwTime(std::span<uint8_t, kClockBytes> out);
  // Sets the local date and time of the system and of the hardware clock; what the calendar does not have
  // sets nothing and is logged.
  void SetHwTime(std::span<const uint8_t, kClockBytes> bcd);

 private:
  BasicPublicFunc() = default;
};

}  // namespace ORVE_MCUC
