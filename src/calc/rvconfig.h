// The header of the configuration-file space: which files a peer announces, and which of them a register
// belongs to. Values in, values out.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "maps/rvconfigmap.h"

namespace ORVE_MCUC {

struct _RvFileName_t {
  std::array<char, 64> name{};
};
struct _RvStorageName_t {
  std::array<char, 80> name{};
};

// What the last header announced. Ranges are in ascending order of their start and end where the next begins.
struct _RvFileHeadPara_t {
  uint8_t WriteFileEn = 0;
  uint8_t WriteFileNum = 0;
  std::array<uint8_t, rv::kMostFiles + 1> FileIndex{};        // number of each range's file
  std::array<uint32_t, rv::kMostFiles + 1> FileDateOffest{};  // start registers, and one end behind the last
  std::array<_RvFileName_t, rv::kMostFiles> NamePara{};       // reserved
  std::array<_RvStorageName_t, rv::kMostFiles> StorageName{};
};

enum class RvHeaderFault : uint8_t { kNone, kTooManyFiles, kTooShort, kOffsetBeyond };
// The faults in the order in which they are looked for.
RvHeaderFault checkRvHeader(std::span<const uint8_t> header);
// Puts what a sound header says into head, in the order of the header; the names stay as they are.
void takeRvHeader(std::span<const uint8_t> header, _RvFileHeadPara_t& head);
// Sorts the ranges by their start; equal starts keep their order.
void sortRvRanges(_RvFileHeadPara_t& head);
// The range that holds a register.
std::optional<std::size_t> rvRangeOf(const _RvFileHeadPara_t& head, uint32_t registerAddress);

// "RvCfgFile_7.rcfgx".
_RvStorageName_t rvStorageName(unsigned int number);

}  // namespace ORVE_MCUC
