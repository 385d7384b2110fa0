// Registers of the cards behind the output ports, by name.
#pragma once

#include <cstdint>

namespace ORVE_MCUC::card {

// Device types.
inline constexpr uint8_t kReceivingCard = 1;
inline constexpr uint8_t kMultiFunctionCard = 2;
inline constexpr uint8_t kDistributionCard = 3;
inline constexpr uint8_t kLauncher3D = 4;

// Receiving cards.
inline constexpr uint32_t kMirroredByte = 0x01000088;  // LSD mirrors it, as it does the brightness
inline constexpr uint32_t kMapping = kMirroredByte;    // what the cards are told of a mapping
inline constexpr uint32_t kSlowCommand = 0x01000011;
inline constexpr uint32_t kBrightness = 0x02000001;      // of the whole card
inline constexpr uint32_t kComponents = 0x02000002;      // four bytes
inline constexpr uint32_t kBlackOut = 0x02000100;        // 0xFF: black
inline constexpr uint32_t kPictureSwitch1 = 0x02000101;  // what they switch is the card's own
inline constexpr uint32_t kPictureSwitch2 = 0x02000102;
inline constexpr uint32_t kSize = 0x02000017;     // width u16, height u16, in pixels
inline constexpr uint32_t kCorrectionTop = 0x07;  // top byte of the addresses of correction data

// Multi-function cards.
inline constexpr uint32_t kSensor = 0x06000000;  // a written question to a light sensor is answered here

// 3D launchers.
inline constexpr uint32_t kLauncherMode = 0x02000001;
inline constexpr uint32_t kLauncherColour = 0x02000002;  // three bytes

}  // namespace ORVE_MCUC::card
