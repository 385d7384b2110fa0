// The picture's offset on the output: modes, and the values that image and FPGA have for an offset. In a mode
// other than normal (bypass) the output size includes the offset.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

// Offset mode of the feature parameters. Every other value is taken as kByTool.
enum OffsetMode : uint8_t {
  kNoOffset = 0,
  kByTool = 1,  // magnitudes, written by a configuration tool
  kByLsd = 2,   // signed, written by LSD
};
// What a peer writes there: open the bypass mode, or close it with kNoOffset.
inline constexpr uint8_t kOpenBypass = 0xA5;

// One axis of a signed offset as the FPGA takes it.
constexpr uint16_t magnitudeOf(int32_t offset) {
  const auto bits = static_cast<uint32_t>(offset);
  return static_cast<uint16_t>(offset < 0 ? 0U - bits : bits);
}
constexpr uint16_t directionOf(int32_t offset) {
  return offset > 0 ? uint16_t{0xFFFF} : uint16_t{0};
}

// A magnitude as the signed offset that LSD is told, 32 bits.
constexpr uint32_t negated(uint16_t magnitude) {
  return 0U - magnitude;
}

// An output measure with an offset, and without one; the fields hold the low 16 bits.
constexpr uint16_t withOffset(uint16_t screen, uint16_t magnitude) {
  return static_cast<uint16_t>(screen + magnitude);
}
constexpr uint16_t withoutOffset(uint16_t output, uint16_t magnitude) {
  return static_cast<uint16_t>(output - magnitude);
}

}  // namespace ORVE_MCUC
