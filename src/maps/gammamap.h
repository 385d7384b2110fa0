// The gamma tables, one row each: where peers address them, where the FPGA and the flash hold them, and the
// words their log lines use. Values from the addresses alone: any thread.
#pragma once

#include <array>
#include <cstdint>

#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"

namespace ORVE_MCUC {

inline constexpr uint32_t kGammaRegisterMask = 0x0FFFFFFF;

// Banks of tables: 12-bit, and any other value 10-bit.
inline constexpr uint8_t kBank12Bit = 0x78;
inline constexpr uint8_t kBank10Bit = 0x58;
inline constexpr uint32_t kLastGammaColour = 2;

struct GammaTable {
  uint32_t first;      // first register of the table; 8191 registers belong to it
  uint32_t fpga;       // FPGA page that the low 16 bits of the register index
  uint32_t flash;      // flash address of the first register
  uint32_t tag;        // flash address of the validity tag
  const char* depth;   // "12BIT" or "10BIT"
  const char* colour;  // "Red", "Green", "Blue"
  uint8_t completes;   // bank that is complete once this table is; 0: others of its bank follow

  // The last byte of a table's range belongs to no table.
  constexpr bool holds(uint32_t address) const {
    return address >= first && address < first + flash::kGammaTableSize - 1;
  }
  constexpr uint32_t end() const { return first + flash::kGammaTableSize; }
};

constexpr GammaTable gammaTable(bool tenBit, uint32_t colour, const char* name) {
  const uint32_t tables = tenBit ? flash::kGamma10BitTables : flash::kGamma12BitTables;
  const uint32_t tags = tenBit ? flash::kGamma10BitTags : flash::kGamma12BitTags;
  return {reg::kRGBGamma + colour * 0x00100000 + (tenBit ? flash::kGammaTableSize : 0),
          fpga::kGammaTables + colour * fpga::kGammaTableStride,
          tables + colour * flash::kGammaTableSize,
          tags + colour * flash::kGammaTagStride,
          tenBit ? "10BIT" : "12BIT",
          name,
          colour != kLastGammaColour ? uint8_t{0}
          : tenBit                   ? kBank10Bit
                                     : kBank12Bit};
}

inline constexpr std::array kGammaMap{
    gammaTable(false, 0, "Red"), gammaTable(false, 1, "Green"), gammaTable(false, 2, "Blue"),
    gammaTable(true, 0, "Red"),  gammaTable(true, 1, "Green"),  gammaTable(true, 2, "Blue"),
};
static_assert(kGammaMap[2].first - kGammaMap[2].flash == 0x0D4F0000);
static_assert(kGammaMap[4].first - kGammaMap[4].flash == 0x0D3FD000 && kGammaMap[4].tag == 0x00D01000);

// A single gamma register: a one-byte access at exactly this address.
struct GammaValue {
  uint32_t address;
  uint32_t fpga;
  uint32_t flash;
  const char* depth;
};
inline constexpr std::array kGammaValues{
    GammaValue{reg::kGamma12BitValue, fpga::kGamma12BitValue, flash::kGamma12BitValue, "12BIT"},
    GammaValue{reg::kGamma10BitValue, fpga::kGamma10BitValue, flash::kGamma10BitValue, "10BIT"},
};

// The table or value that a masked register address belongs to; null when there is none.
constexpr const GammaTable* findGammaTable(uint32_t address) {
  for (const auto& table : kGammaMap) {
    if (table.holds(address)) return &table;
  }
  return nullptr;
}
constexpr const GammaValue* findGammaValue(uint32_t address, uint32_t length) {
  for (const auto& value : kGammaValues) {
    if (value.address == address && length == 1) return &value;
  }
  return nullptr;
}
static_assert(findGammaTable(0x0E001FFE) == &kGammaMap[0] && findGammaTable(0x0E001FFF) == nullptr);

}  // namespace ORVE_MCUC
