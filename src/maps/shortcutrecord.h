// The record of a screen configuration as peers write it and flash keeps it: offsets in the shortcut
// configuration space.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORVE_MCUC::shortcut {

inline constexpr std::size_t kStatusAt = 0x00;  // what configured the screen last
inline constexpr std::size_t kModeAt = 0x11;
inline constexpr std::size_t kRowsAt = 0x16;
inline constexpr std::size_t kColumnsAt = 0x17;
inline constexpr std::size_t kCardsPerPortAt = 0x18;  // u16
inline constexpr std::size_t kRecordSize = 32;
inline constexpr std::size_t kUsedSize = 28;  // of the record

// What the status byte says.
inline constexpr uint8_t kSmart = 0xA8;
inline constexpr uint8_t kAdvanced = 0xB8;
inline constexpr uint8_t kByTables = 0xC8;

// Advanced configuration: a block for each output port, and the byte that submits them when a write begins
// with it.
inline constexpr uint8_t kSubmitAdvanced = 0xB9;
inline constexpr std::size_t kPortsAt = 0x50;
inline constexpr std::size_t kPortSize = 0x40;
inline constexpr std::size_t kPortsLast = 0x41C;
inline constexpr std::size_t kPortModeAt = 1;
inline constexpr std::size_t kPortRowsAt = 6;
inline constexpr std::size_t kPortColumnsAt = 7;
inline constexpr std::size_t kPortXAt = 9;     // u16
inline constexpr std::size_t kPortYAt = 0x0B;  // u16

}  // namespace ORVE_MCUC::shortcut
