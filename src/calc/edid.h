// EDID bytes: VESA E-EDID 1.3, a base block of 128 bytes and one extension block. Values in, values out.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace ORVE_MCUC {

inline constexpr std::size_t kEdidBlock = 128;
inline constexpr std::size_t kEdidBytes = 2 * kEdidBlock;
inline constexpr std::size_t kEdidExtensionsAt = 126;  // number of extension blocks
inline constexpr std::size_t kEdidChecksumAt = 127;    // of each block
inline constexpr std::size_t kEdidTimingAt = 0x36;     // first of four descriptors
inline constexpr std::size_t kEdidDescriptor = 18;     // bytes
inline constexpr std::size_t kEdidDescriptors = 4;
using EdidBytes = std::array<uint8_t, kEdidBytes>;

// The byte that makes a block sum to 0.
uint8_t edidChecksum(std::span<const uint8_t, kEdidBlock> block);

enum class EdidCheck : uint8_t { kSound, kHeadError, kSumError };
// Header, and the checksum of each block that there is.
EdidCheck ResT_verify_EDID(std::span<const uint8_t, kEdidBytes> edid);

// A detailed timing: pixels and lines, the offsets of the syncs from the end of what is active.
struct DetailedTiming {
  uint32_t pixelClock = 0;  // Hz
  uint32_t hActive = 0, hBlank = 0, hSyncOffset = 0, hSyncWidth = 0;
  uint32_t vActive = 0, vBlank = 0, vSyncOffset = 0, vSyncWidth = 0;
  bool operator==(const DetailedTiming&) const = default;

  constexpr uint64_t pixelsOfFrame() const { return uint64_t{hActive + hBlank} * (vActive + vBlank); }
};

// Frames in 0.01 Hz of a clock in 10 kHz, cut to a whole number; nothing without pixels.
std::optional<uint32_t> frameOf(uint32_t clockWord, uint64_t pixelsOfFrame);

// What a descriptor that is not cut to zero can say: active 1..4095, blanking to 4095, horizontal sync to
// 1023, vertical sync to 63.
bool fitsDescriptor(const DetailedTiming& timing);
// The clock in 10 kHz that gives a timing frame (0.01 Hz), sought from the timing's own clock in at most 100
// steps; nothing when it lies outside 1..65535.
std::optional<uint16_t> clockWordFor(const DetailedTiming& timing, uint32_t frame);

using DescriptorBytes = std::array<uint8_t, kEdidDescriptor>;
// A progressive timing with digital separate syncs, both negative. The timing must fit.
DescriptorBytes edid_create_dtd(const DetailedTiming& timing, uint16_t clockWord);
// A descriptor whose clock is 0 describes no timing, and has fields all the same.
DetailedTiming parseDtd(std::span<const uint8_t, kEdidDescriptor> descriptor);

// Resolution and frames (0.01 Hz) of an EDID's first detailed timing. The frame is 0 where it cannot be told
// or is beyond 65535.
struct InputMode {
  uint16_t width = 0;
  uint16_t height = 0;
  uint16_t frame = 0;
  bool operator==(const InputMode&) const = default;
};
// Needs at least a base block.
InputMode modeOfEdid(std::span<const uint8_t> edid);

}  // namespace ORVE_MCUC
