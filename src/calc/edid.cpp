#include "calc/edid.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array<uint8_t, 8> kHead{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr uint32_t kMostActive = 4095;
constexpr uint32_t kMostBlank = 4095;
constexpr uint32_t kMostHSync = 1023;
constexpr uint32_t kMostVSync = 63;
constexpr uint32_t kClockUnit = 10000;  // Hz
constexpr uint32_t kMostClockWord = 65535;
constexpr int kClockSteps = 100;
constexpr uint8_t kDigitalSeparateSync = 3 << 3;

uint8_t sumOf(std::span<const uint8_t> bytes) {
  return static_cast<uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

constexpr uint8_t low(uint32_t value) {
  return static_cast<uint8_t>(value);
}
// The bits above the lowest eight of two fields share a byte.
constexpr uint8_t nibbles(uint32_t upper, uint32_t lower) {
  return static_cast<uint8_t>((upper >> 8 & 0x0F) << 4 | (lower >> 8 & 0x0F));
}

}  // namespace

uint8_t edidChecksum(std::span<const uint8_t, kEdidBlock> block) {
  return static_cast<uint8_t>(-sumOf(block.first<kEdidChecksumAt>()));
}

EdidCheck ResT_verify_EDID(std::span<const uint8_t, kEdidBytes> edid) {
  if (!std::equal(kHead.begin(), kHead.end(), edid.begin())) return EdidCheck::kHeadError;
  const bool extended = edid[kEdidExtensionsAt] != 0;
  if (sumOf(edid.first<kEdidBlock>()) != 0) return EdidCheck::kSumError;
  if (extended && sumOf(edid.last<kEdidBlock>()) != 0) return EdidCheck::kSumError;
  return EdidCheck::kSound;
}

std::optional<uint32_t> frameOf(uint32_t clockWord, uint64_t pixelsOfFrame) {
  if (pixelsOfFrame == 0) return std::nullopt;
  const double frame =
      static_cast<double>(uint64_t{clockWord} * kClockUnit) / static_cast<double>(pixelsOfFrame) * 100;
  if (frame >= double{std::numeric_limits<uint32_t>::max()}) return std::nullopt;
  return static_cast<uint32_t>(frame);
}

bool fitsDescriptor(const DetailedTiming& timing) {
  const auto isActive = [](uint32_t value) { return value >= 1 && value <= kMostActive; };
  return isActive(timing.hActive) && isActive(timing.vActive) && timing.hBlank <= kMostBlank &&
         timing.vBlank <= kMostBlank && timing.hSyncOffset <= kMostHSync && timing.hSyncWidth <= kMostHSync &&
         timing.vSyncOffset <= kMostVSync && timing.vSyncWidth <= kMostVSync;
}

std::optional<uint16_t> clockWordFor(const DetailedTiming& timing, uint32_t frame) {
  uint64_t word = (uint64_t{timing.pixelClock} + kClockUnit / 2) / kClockUnit;
  if (word < 1 || word > kMostClockWord) return std::nullopt;
  for (int step = 0; step < kClockSteps; ++step) {
    const auto reached = frameOf(static_cast<uint32_t>(word), timing.pixelsOfFrame());
    if (!reached) return std::nullopt;
    if (*reached == frame) break;
    const uint64_t next = *reached > frame ? word - 1 : word + 1;
    if (next < 1 || next > kMostClockWord) break;
    word = next;
  }
  return static_cast<uint16_t>(word);
}

DescriptorBytes edid_create_dtd(const DetailedTiming& timing, uint16_t clockWord) {
  const uint32_t hOffset = timing.hSyncOffset;
  const uint32_t hWidth = timing.hSyncWidth;
  const uint32_t vOffset = timing.vSyncOffset;
  const uint32_t vWidth = timing.vSyncWidth;
  DescriptorBytes bytes{};
  ByteWriter to(bytes);
  to.le16(clockWord);
  to.u8(low(timing.hActive));
  to.u8(low(timing.hBlank));
  to.u8(nibbles(timing.hActive, timing.hBlank));
  to.u8(low(timing.vActive));
  to.u8(low(timing.vBlank));
  to.u8(nibbles(timing.vActive, timing.vBlank));
  to.u8(low(hOffset));
  to.u8(low(hWidth));
  to.u8(static_cast<uint8_t>((vOffset & 0x0F) << 4 | (vWidth & 0x0F)));
  to.u8(static_cast<uint8_t>((hOffset >> 8 & 3) << 6 | (hWidth >> 8 & 3) << 4 | (vOffset >> 4 & 3) << 2 |
                             (vWidth >> 4 & 3)));
  bytes.back() = kDigitalSeparateSync;  // image size and borders before it stay 0
  return bytes;
}

DetailedTiming parseDtd(std::span<const uint8_t, kEdidDescriptor> b) {
  const auto with = [](uint32_t upper, uint8_t lower) { return (upper & 0x0F) << 8 | lower; };
  const uint32_t highs = b[11];
  DetailedTiming timing;
  timing.pixelClock = le16(b) * kClockUnit;
  timing.hActive = with(b[4] >> 4, b[2]);
  timing.hBlank = with(b[4], b[3]);
  timing.vActive = with(b[7] >> 4, b[5]);
  timing.vBlank = with(b[7], b[6]);
  timing.hSyncOffset = (highs >> 6 & 3) << 8 | b[8];
  timing.hSyncWidth = (highs >> 4 & 3) << 8 | b[9];
  timing.vSyncOffset = (highs >> 2 & 3) << 4 | b[10] >> 4;
  timing.vSyncWidth = (highs & 3) << 4 | (b[10] & 0x0F);
  return timing;
}

InputMode modeOfEdid(std::span<const uint8_t> edid) {
  if (edid.size() < kEdidBlock) return {};
  const DetailedTiming timing = parseDtd(edid.subspan<kEdidTimingAt, kEdidDescriptor>());
  const uint32_t frame = frameOf(timing.pixelClock / kClockUnit, timing.pixelsOfFrame()).value_or(0);
  constexpr uint32_t kMostFrame = std::numeric_limits<uint16_t>::max();
  return {static_cast<uint16_t>(timing.hActive), static_cast<uint16_t>(timing.vActive),
          static_cast<uint16_t>(frame <= kMostFrame ? frame : 0)};
}

}  // namespace ORVE_MCUC
