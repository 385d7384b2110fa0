#include "wallverify.h"

#include <algorithm>
#include <array>

#include "maps/fpgamap.h"
#include "mcucdatablock.h"
#include "peer/error.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;

constexpr std::size_t kPiece = 2048;  // bytes of a read: every way gives as much at once

// All windows, from the first port's to the last one's.
constexpr uint32_t kWindowsFirst = map::fpga::portWindow(0);
constexpr uint32_t kWindowsEnd = map::fpga::portWindow(map::kMappedPorts);

struct Window {
  PixelSize size;
  Pixel offset;
  bool operator==(const Window&) const = default;
  std::string text() const { return sizeText(size) + " at " + pairText(offset); }
};

peer::Bytes readRecords(const ReadBack& way) {
  return way.read(kWindowsFirst, kWindowsEnd - kWindowsFirst);
}

Window windowIn(const peer::Bytes& records, unsigned port) {
  map::ByteReader record(std::span<const uint8_t>(records).subspan(
      map::fpga::portWindow(port) - kWindowsFirst, map::fpga::kWindowSize));
  Window window;
  window.size.width = record.le16();
  window.size.height = record.le16();
  window.offset.x = record.le16();
  window.offset.y = record.le16();
  return window;
}

peer::Bytes readTable(const ReadBack& way, unsigned port) {
  peer::Bytes table;
  for (std::size_t at = 0; at < map::kPortTableSize; at += kPiece) {
    const auto address = static_cast<uint32_t>(map::fpga::kPositionTables + port * map::kPortTableSize + at);
    const peer::Bytes piece = way.read(address, kPiece);
    table.insert(table.end(), piece.begin(), piece.end());
  }
  return table;
}

Pixel entryOf(std::span<const uint8_t> table, std::size_t entry) {
  return {map::le16(table, 4 * entry), map::le16(table, 4 * entry + 2)};
}

// Entries behind the last whole repetition of the chain hold what they held before.
Difference tableDifference(const WallPlan& plan, unsigned port, const peer::Bytes& found) {
  const auto chain = map::chainAt(plan.screen(), plan.split(), map::placeOf(plan.split(), port));
  std::array<uint8_t, map::kPortTableSize> expected{};
  map::fillPortTable(chain, expected);
  const std::size_t entries = std::size_t{map::repetitionsOf(chain)} * chain.cards();
  for (std::size_t entry = 0; entry < entries; ++entry) {
    const Pixel wanted = entryOf(expected, entry);
    const Pixel got = entryOf(found, entry);
    if (wanted != got) return {port, "entry " + std::to_string(entry), pairText(wanted), pairText(got)};
  }
  return {};
}

}  // namespace

std::string Difference::text() const {
  return "port " + std::to_string(port) + ", " + what + ": expected " + expected + ", found " + found;
}

const ReadBack& openWay(const std::vector<ReadBack>& ways) {
  std::string reasons;
  for (const ReadBack& way : ways) {
    try {
      readRecords(way);
      readTable(way, 0);
      return way;
    } catch (const peer::Error& error) {
      reasons += "\n  " + way.name + ": " + error.what();
    }
  }
  throw peer::Error(peer::Failure::NoDaemon, "the port tables cannot be read back:" + reasons);
}

Difference firstDifference(const WallPlan& plan, const ReadBack& way) {
  const peer::Bytes records = readRecords(way);
  for (const WallPort& port : plan.ports()) {
    const Window expected{port.window, port.offset};
    const Window found = windowIn(records, port.port);
    if (found != expected) return {port.port, "window", expected.text(), found.text()};
  }
  for (const WallPort& port : plan.ports()) {
    Difference difference = tableDifference(plan, port.port, readTable(way, port.port));
    if (!difference.none()) return difference;
  }
  return {};
}

}  // namespace parlctl
