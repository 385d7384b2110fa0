// Registers of the test-pattern generator: offsets in its image, which the FPGA has one to one. Fields of two
// bytes are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORVE_MCUC::pattern {

inline constexpr std::size_t kImageSize = 64;

inline constexpr std::size_t kControlAt = 0x00;
inline constexpr std::size_t kStateAt = 0x01;
inline constexpr std::size_t kScreenWidthAt = 0x02;   // u16, refreshed from the FPGA before each load
inline constexpr std::size_t kScreenHeightAt = 0x04;  // u16, likewise
inline constexpr std::size_t kFirstXAt = 0x0E;        // i16: first pixel of the pattern
inline constexpr std::size_t kFirstYAt = 0x10;        // i16
inline constexpr std::size_t kStrobeAt = 0x1B;        // kStrobe pulses the FPGA to take the new values
inline constexpr std::size_t kKindAt = 0x20;
inline constexpr std::size_t kIntervalXAt = 0x21;  // u16, pixels
inline constexpr std::size_t kIntervalYAt = 0x23;
inline constexpr std::size_t kPixelPhaseXAt = 0x25;  // u16, derived
inline constexpr std::size_t kPixelPhaseYAt = 0x27;
inline constexpr std::size_t kBlockCountXAt = 0x2D;  // u16, derived: blocks in front of the first pixel
inline constexpr std::size_t kBlockCountYAt = 0x2F;
inline constexpr std::size_t kBlockWidthAt = 0x31;  // u16, pixels
inline constexpr std::size_t kBlockHeightAt = 0x33;
inline constexpr std::size_t kBlockPhaseXAt = 0x35;  // u16, derived
inline constexpr std::size_t kBlockPhaseYAt = 0x37;
inline constexpr std::size_t kLoadedEnd = 0x39;  // what is loaded into the FPGA ends here

inline constexpr uint8_t kStrobe = 0xA8;

// Kinds of pattern; any other derives nothing.
inline constexpr uint8_t kPixels = 1;
inline constexpr uint8_t kBlocks = 2;

}  // namespace ORVE_MCUC::pattern
