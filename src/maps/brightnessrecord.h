// The brightness configuration file: what lies where in it. Its place in flash and its register addresses
// have the same offsets; the first 512 bytes are mirrored in memory. Multi-byte fields are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORVE_MCUC::brightness {

inline constexpr std::size_t kFileSize = 5120;  // the area in flash
inline constexpr std::size_t kMirrorSize = 512;
inline constexpr std::size_t kModePages = 16;  // what a change of the mode stores anew
inline constexpr std::size_t kPageSize = 256;

// Byte 0. Any other value: no automatic brightness.
enum Mode : uint8_t {
  kProgrammable = 0x5B,  // a timetable in the mirror
  kAutomatic = 0x7D,     // sensors and a linear table in the header
  kMixed = 0x9A,         // time slots with a brightness or with sensors and a map
  kSerialBlack = 0x9B,   // black when the heartbeat stops
  kHardware = 0x9C,      // the mixed plan when the heartbeat stops
};
constexpr bool isMixedFile(uint8_t mode) {
  return mode == kMixed || mode == kSerialBlack || mode == kHardware;
}

// Header.
inline constexpr std::size_t kMode = 0;
inline constexpr std::size_t kCount = 1;             // programmable: nodes; automatic: sensors
inline constexpr std::size_t kFileLength = 1;        // u16, other modes
inline constexpr std::size_t kComponents = 2;        // programmable: kWithComponents or not
inline constexpr std::size_t kSensorBase = 3;        // u16, mixed, as the four bases
inline constexpr std::size_t kTimeNodeBase = 5;      // u16
inline constexpr std::size_t kLuxMapBase = 7;        // u16
inline constexpr std::size_t kSensorValidBase = 10;  // u16
inline constexpr std::size_t kControl = 12;          // non-zero: on
inline constexpr std::size_t kReadInterval = 13;     // u16, seconds
inline constexpr std::size_t kReadTimes = 15;
inline constexpr std::size_t kGlobalControl = 16;  // non-zero: mixed, serial and hardware modes may run
inline constexpr std::size_t kGradual = 17;        // non-zero: one unit at a time
inline constexpr std::size_t kMaxLux = 5;          // u16, automatic, as the rest
inline constexpr std::size_t kMinLux = 7;          // u16
inline constexpr std::size_t kMaxBrightness = 9;
inline constexpr std::size_t kMinBrightness = 10;
inline constexpr std::size_t kSteps = 11;
inline constexpr uint8_t kWithComponents = 0x5B;

// Columns of the programmable timetable, a byte a node.
inline constexpr std::size_t kProgrammableNodes = 32;
inline constexpr std::size_t kNodeHour = 0x20;    // BCD
inline constexpr std::size_t kNodeMinute = 0x40;  // BCD
inline constexpr std::size_t kNodePorts = 0x80;   // bits 0..3: output ports
inline constexpr std::size_t kNodeBrightness = 0xA0;
inline constexpr std::size_t kNodeComponents = 0xC0;  // four columns
inline constexpr std::size_t kColumn = 0x20;
inline constexpr unsigned kNodePortCount = 4;

// Lists of the mixed file: a count, then the records.
inline constexpr std::size_t kMixedNodeSize = 16;
inline constexpr std::size_t kMixedSensorSize = 8;
inline constexpr std::size_t kLuxPointSize = 3;
inline constexpr std::size_t kFallbackSize = 3;
inline constexpr uint8_t kMostLuxPoints = 32;
inline constexpr uint8_t kMostSensors = 8;
inline constexpr std::size_t kAutomaticSensors = 0x20;
inline constexpr std::size_t kAutomaticSensorSize = 16;

// Bytes of a mixed node.
inline constexpr std::size_t kMixedHour = 0;    // BCD
inline constexpr std::size_t kMixedMinute = 1;  // BCD
inline constexpr std::size_t kMixedKind = 3;
inline constexpr std::size_t kMixedWeekdays = 4;  // bit d - 1: valid on weekday d
inline constexpr std::size_t kMixedPercent = 5;
inline constexpr std::size_t kMixedEnabled = 6;
inline constexpr uint8_t kAmbientSlot = 1;

}  // namespace ORVE_MCUC::brightness
