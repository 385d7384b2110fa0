// How a configuration file is played to the receiving cards: which writes, which pauses. The file's bytes
// come from peers, so nothing of it is believed before it has been checked. Values in, values out.
#pragma once

#include <cstdint>
#include <span>

#include "maps/rvconfigmap.h"
#include "mcucdatablock.h"

namespace ORVE_MCUC {

// One item, whose data lie in the file.
struct RvItem {
  uint32_t cardRegister = 0;
  uint16_t pauseMs = 0;
  std::span<const uint8_t> data;
};

enum class RvEnd : uint8_t {
  kDone,      // every item
  kTooLong,   // an item says more data than one may have
  kCutShort,  // an item does not lie wholly within the file
  kStopped,   // who played wanted no more
};

// Calls use(item) for the items of a file in their order, until it returns false.
template <class Use>
RvEnd forEachRvItem(std::span<const uint8_t> file, Use use) {
  ByteReader reader(file);
  const uint16_t count = reader.le16();
  reader.bytes(rv::kFileHeadBytes - sizeof count);
  for (uint16_t n = 0; n < count; ++n) {
    RvItem item;
    item.cardRegister = reader.le32();
    item.pauseMs = reader.le16();
    const uint16_t length = reader.le16();
    if (length > rv::kMostItemData) return RvEnd::kTooLong;
    item.data = reader.bytes(length);
    if (!reader.ok()) return RvEnd::kCutShort;
    if (!use(item)) return RvEnd::kStopped;
  }
  return RvEnd::kDone;
}

// Calls write(register, bytes) and pause(milliseconds) as playing an item does; each returns false to stop.
template <class Write, class Pause>
bool playRvItem(const RvItem& item, Write write, Pause pause) {
  std::span<const uint8_t> rest = item.data;
  uint32_t at = item.cardRegister;
  if (rest.size() > rv::kBlockBytes) {
    for (; rest.size() >= rv::kBlockBytes; at += rv::kBlockBytes, rest = rest.subspan(rv::kBlockBytes)) {
      if (!write(at, rest.first(rv::kBlockBytes)) || !pause(rv::kBlockPauseMs)) return false;
    }
  }
  const bool hasRemainder = !rest.empty() || item.data.empty();  // an empty item is one empty write
  if (hasRemainder && !write(at, rest)) return false;
  return pause(rv::kItemPauseMs) && (item.pauseMs == 0 || pause(int{item.pauseMs}));
}

// What playing a whole file amounts to.
struct RvPlan {
  RvEnd end = RvEnd::kDone;
  uint32_t items = 0;
  uint32_t writes = 0;
  uint64_t pausesMs = 0;
  std::size_t bytes = 0;  // of the file, up to the last whole item
};
RvPlan planOf(std::span<const uint8_t> file);

}  // namespace ORVE_MCUC
