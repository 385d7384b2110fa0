// Task identifiers of the message service: the board's card bit in bits 24..31, a service code in bits 0..23.
#pragma once

#include <cstdint>

#include "platform/apipc.h"

namespace ORVE_MCUC {

inline constexpr uint32_t kServiceParlend = 0x0A4200;
inline constexpr uint32_t kServiceLsd = 0x0A3900;
inline constexpr uint32_t kServiceVsp = 0x0A3700;
inline constexpr uint32_t kServiceVideod = 0x0A3A00;
inline constexpr uint32_t kServiceSend = 0x070400;  // every send goes here; the head names the peer

inline uint32_t taskOf(uint32_t serviceCode) {
  return static_cast<uint32_t>(apcard_bit_self()) << 24 | serviceCode;
}

}  // namespace ORVE_MCUC
