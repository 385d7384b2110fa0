#include "calc/rvconfig.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kEnableAt = 0;
constexpr std::size_t kCountAt = 1;

uint32_t offsetOf(std::span<const uint8_t> header, std::size_t file) {
  return le32(header, rv::kHeadBytes + file * rv::kEntryBytes + rv::kEntryOffsetAt);
}

}  // namespace

RvHeaderFault checkRvHeader(std::span<const uint8_t> header) {
  if (header.size() < rv::kHeadBytes) return RvHeaderFault::kTooShort;
  const std::size_t count = header[kCountAt];
  if (count > rv::kMostFiles) return RvHeaderFault::kTooManyFiles;
  if (header.size() < rv::kHeadBytes + count * rv::kEntryBytes) return RvHeaderFault::kTooShort;
  for (std::size_t file = 0; file < count; ++file) {
    if (offsetOf(header, file) > rv::kMostOffset) return RvHeaderFault::kOffsetBeyond;
  }
  return RvHeaderFault::kNone;
}

void takeRvHeader(std::span<const uint8_t> header, _RvFileHeadPara_t& head) {
  head.WriteFileEn = header[kEnableAt];
  head.WriteFileNum = header[kCountAt];
  for (uint8_t file = 0; file < head.WriteFileNum; ++file) {
    head.FileIndex[file] = file;
    head.FileDateOffest[file] = rv::kHeader + offsetOf(header, file);
  }
  head.FileDateOffest[head.WriteFileNum] = rv::kBodiesEnd;
}

void sortRvRanges(_RvFileHeadPara_t& head) {
  const std::size_t count = head.WriteFileNum;
  for (std::size_t sorted = 1; sorted < count; ++sorted) {
    for (std::size_t k = 0; k + sorted < count; ++k) {
      if (head.FileDateOffest[k] <= head.FileDateOffest[k + 1]) continue;
      std::swap(head.FileDateOffest[k], head.FileDateOffest[k + 1]);
      std::swap(head.FileIndex[k], head.FileIndex[k + 1]);
    }
  }
}

std::optional<std::size_t> rvRangeOf(const _RvFileHeadPara_t& head, uint32_t registerAddress) {
  for (std::size_t k = 0; k < head.WriteFileNum; ++k) {
    if (head.FileDateOffest[k] <= registerAddress && registerAddress < head.FileDateOffest[k + 1]) return k;
  }
  return std::nullopt;
}

_RvStorageName_t rvStorageName(unsigned int number) {
  _RvStorageName_t storage;
  std::snprintf(storage.name.data(), storage.name.size(), "RvCfgFile_%u.rcfgx", number);
  return storage;
}

}  // namespace ORVE_MCUC
