// The space of the receiving cards' configuration files and the bytes of such a file: what peers write, the
// daemon stores and plays, and the client composes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "maps/registermap.h"

namespace ORVE_MCUC::rv {

// Registers of the space.
inline constexpr uint32_t kHeader = reg::kRVConfigFile;
inline constexpr uint32_t kIndex = reg::kRVConfigFile + 0x800;
inline constexpr uint32_t kIndexLast = reg::kRVConfigFile + 0x1000;  // is the index's, too
inline constexpr uint32_t kBodiesEnd = reg::kRVConfigFile | reg::kDeviceNameFileBit;
inline constexpr uint32_t kControl = reg::kRVConfigFile + 0xF00000;
inline constexpr uint32_t kControlEnd = kControl + 0x120;
inline constexpr uint32_t kPlay = kControl + 0x100;  // + number of the file
inline constexpr uint16_t kMostChunk = 2048;         // bytes of one request

// The header: enable byte, number of files, and an entry a file with its offset in the space.
inline constexpr std::size_t kHeadBytes = 32;
inline constexpr std::size_t kEntryBytes = 32;
inline constexpr std::size_t kEntryOffsetAt = 4;
inline constexpr std::size_t kMostFiles = 16;
inline constexpr uint32_t kMostOffset = 0x7FFFFF;

// Stored files are numbered below this.
inline constexpr int kFileNumbers = 32;
// The largest file that the space can hold: to its end, with a last chunk that begins before it.
inline constexpr std::size_t kMostFileBytes = kMostOffset + std::size_t{kMostChunk};

// A file: number of items u16, reserved to 32, then items: card register u32, pause in ms u16, length u16,
// data.
inline constexpr std::size_t kFileHeadBytes = 32;
inline constexpr std::size_t kItemHeadBytes = 8;
inline constexpr uint16_t kMostItemData = 4096;

// How a file is played: data go in blocks, each with a pause, and each item ends with one.
inline constexpr uint16_t kBlockBytes = 512;
inline constexpr int kBlockPauseMs = 10;
inline constexpr int kItemPauseMs = 15;

static_assert(kBodiesEnd == 0x0F800000 && kControl == 0x0FF00000 && kPlay == 0x0FF00100);
static_assert(kPlay + kFileNumbers == kControlEnd);

}  // namespace ORVE_MCUC::rv
