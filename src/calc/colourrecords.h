// The records in which colour settings travel to their handlers and into the flash. Fields are little-endian.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

// Ten bytes; byte 3 is reserved and 0.
struct HDRParaData {
  static constexpr std::size_t kSize = 10;

  uint8_t HDRType = 0;
  uint8_t HLGCalss = 0;
  uint8_t brightness = 0;         // of the receiving cards, percent
  uint16_t fScreenPeakLight = 0;  // cd/m2
  uint16_t fambientLight = 0;     // cd/m2
  uint8_t pMinLum = 0;            // effect on low grey levels
  uint8_t pdelta = 0;             // effect on high grey levels

  constexpr std::array<uint8_t, kSize> bytes() const {
    std::array<uint8_t, kSize> record{HDRType, HLGCalss, brightness, 0, 0, 0, 0, 0, pMinLum, pdelta};
    putLe16(record, 4, fScreenPeakLight);
    putLe16(record, 6, fambientLight);
    return record;
  }
  static constexpr HDRParaData of(std::span<const uint8_t, kSize> record) {
    return {record[0], record[1], record[2], le16(record, 4), le16(record, 6), record[8], record[9]};
  }
  bool operator==(const HDRParaData&) const = default;
};

struct CSCParaData {
  static constexpr std::size_t kSize = 6;

  uint16_t Saturation = 0;
  uint16_t Contrast = 0;
  uint16_t Hue = 0;  // degrees

  constexpr std::array<uint8_t, kSize> bytes() const {
    std::array<uint8_t, kSize> record{};
    ByteWriter writer(record);
    writer.le16(Saturation);
    writer.le16(Contrast);
    writer.le16(Hue);
    return record;
  }
  static constexpr CSCParaData of(std::span<const uint8_t, kSize> record) {
    return {le16(record, 0), le16(record, 2), le16(record, 4)};
  }
  bool operator==(const CSCParaData&) const = default;
};

static_assert(HDRParaData::of(HDRParaData{1, 2, 3, 1000, 300, 6, 7}.bytes()) ==
              HDRParaData{1, 2, 3, 1000, 300, 6, 7});
static_assert(CSCParaData::of(CSCParaData{16, 32, 300}.bytes()) == CSCParaData{16, 32, 300});

}  // namespace ORVE_MCUC
