// What a person has set on the controller, with what it is until then. Written by the receive thread only;
// any thread reads. The values that the colours are calculated from are those of the parameter table, where
// the handlers put them.
#pragma once

#include "mcucdatablock.h"

namespace ORVE_MCUC {

struct ColourSettings {
  static ColourSettings* getInstance();
  static void deleteInstance();

  RelaxedByte HDRType{0};                         // kHdr10, or anything else for HLG
  RelaxedValue<uint16_t> fScreenPeakLight{1000};  // cd/m2
  RelaxedValue<uint16_t> fambientLight{30};       // cd/m2
  RelaxedByte pMinLum{15};
  RelaxedByte pdelta{140};
  RelaxedByte HLGCalss{4};
  RelaxedValue<uint16_t> Saturation{50};
  RelaxedValue<uint16_t> Contrast{50};
  RelaxedValue<uint16_t> Hue{0};  // degrees
};

inline constexpr uint8_t kHdr10 = 0x58;

}  // namespace ORVE_MCUC
