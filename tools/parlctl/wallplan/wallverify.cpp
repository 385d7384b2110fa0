#include "wallverify.h"

#include <algorithm>
#include <array>

#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcucdatablock.h"
#include "peer/error.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;
namespace fpga = ORVE_MCUC::fpga;
namespace flash = ORVE_MCUC::flash;

constexpr std::size_t kPiece = 2048;  // bytes of a read: every way gives as much at once

// Screen size and windows, from the first register to the last one.
constexpr uint32_t kScreenFirst = fpga::kScreenWidth;
constexpr uint32_t kScreenEnd = fpga::kOutputHeight + 2;

// The cards of a port are counted in a slot of its own, four ports to a page of the FPGA and to a part of the
// saved table.
constexpr uint32_t kCountSlot = 0x20;
constexpr std::array<uint32_t, 3> kCountPages{fpga::kNumberPorts0To3, fpga::kNumberPorts4To7,
                                              fpga::kNumberPorts8To11};
constexpr std::array<uint32_t, 3> kSavedCounts{0x000, 0x080, 0x200};
constexpr uint32_t countAddress(unsigned port) {
  return kCountPages[port / 4] + kCountSlot * (port % 4);
}

struct Window {
  PixelSize size;
  Pixel offset;
  bool operator==(const Window&) const = default;
  std::string text() const { return sizeText(size) + " at " + pairText(offset); }
};

peer::Bytes readScreen(const ReadBack& way) {
  return way.read(kScreenFirst, kScreenEnd - kScreenFirst);
}

PixelSize sizeIn(const peer::Bytes& screen, uint32_t address) {
  return {map::le16(screen, address - kScreenFirst), map::le16(screen, address - kScreenFirst + 2)};
}

Window windowIn(const peer::Bytes& screen, unsigned port) {
  map::ByteReader record(
      std::span<const uint8_t>(screen).subspan(fpga::portWindow(port) - kScreenFirst, fpga::kWindowSize));
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
    const auto address = static_cast<uint32_t>(fpga::kPositionTables + port * map::kPortTableSize + at);
    const peer::Bytes piece = way.read(address, kPiece);
    table.insert(table.end(), piece.begin(), piece.end());
  }
  return table;
}

Pixel entryOf(std::span<const uint8_t> table, std::size_t entry) {
  return {map::le16(table, 4 * entry), map::le16(table, 4 * entry + 2)};
}

std::string portPlace(unsigned port, const std::string& what) {
  return "port " + std::to_string(port) + ", " + what;
}

// Entries behind the last whole repetition of the chain hold what they held before.
std::size_t writtenEntries(const map::CardChain& cable) {
  return map::repetitionsOf(cable) * cable.cards();
}

Difference tableDifference(const WallPort& port, const peer::Bytes& found) {
  std::array<uint8_t, map::kPortTableSize> expected{};
  map::fillPortTable(port.cable, expected);
  for (std::size_t entry = 0; entry < writtenEntries(port.cable); ++entry) {
    const Pixel wanted = entryOf(expected, entry);
    const Pixel got = entryOf(found, entry);
    if (wanted != got)
      return {portPlace(port.port, "entry " + std::to_string(entry)), pairText(wanted), pairText(got)};
  }
  return {};
}

Difference sizeDifference(const char* place, PixelSize expected, PixelSize found) {
  if (expected == found) return {};
  return {place, sizeText(expected), sizeText(found)};
}

Difference windowDifference(const WallPort& port, const peer::Bytes& screen) {
  const Window expected{port.window, port.offset};
  const Window found = windowIn(screen, port.port);
  if (found == expected) return {};
  return {portPlace(port.port, "window"), expected.text(), found.text()};
}

Difference countDifference(const WallPort& port, const ReadBack& way) {
  const uint16_t found = map::le16(way.read(countAddress(port.port), 2), 0);
  if (found == port.cable.cards()) return {};
  return {portPlace(port.port, "card count"), std::to_string(port.cable.cards()), std::to_string(found)};
}

}  // namespace

const ReadBack& openWay(const std::vector<ReadBack>& ways) {
  std::string reasons;
  const ReadBack* zeros = nullptr;
  for (const ReadBack& way : ways) {
    try {
      const peer::Bytes screen = readScreen(way);
      readTable(way, 0);
      if (std::ranges::any_of(screen, [](uint8_t byte) { return byte != 0; })) return way;
      reasons += "\n  " + way.name + ": nothing but zeros, as of an FPGA that the daemon cannot read";
      zeros = &way;
    } catch (const peer::Error& error) {
      reasons += "\n  " + way.name + ": " + error.what();
    }
  }
  // Several ways agree that there is nothing: the last of them does not ask the daemon.
  if (zeros != nullptr && ways.size() > 1 && zeros == &ways.back()) return *zeros;
  throw peer::Error(peer::Failure::NoDaemon, "the FPGA cannot be read back:" + reasons);
}

Difference firstDifference(const WallPlan& plan, const ReadBack& way, Scope scope) {
  const peer::Bytes screen = readScreen(way);
  const Difference output =
      sizeDifference("output size (0x1EC)", plan.size(), sizeIn(screen, fpga::kOutputWidth));
  if (scope.outputSize && !output.none()) return output;
  if (Difference size =
          sizeDifference("screen size (0x24)", plan.screenField(), sizeIn(screen, fpga::kScreenWidth));
      !size.none())
    return size;
  for (const WallPort& port : plan.ports())
    if (Difference difference = windowDifference(port, screen); !difference.none()) return difference;
  for (const WallPort& port : plan.ports())
    if (Difference difference = countDifference(port, way); !difference.none()) return difference;
  for (const WallPort& port : plan.ports()) {
    Difference difference = tableDifference(port, readTable(way, port.port));
    if (!difference.none()) return difference;
  }
  return {};
}

uint32_t lastEntryAddress(const WallPlan& plan) {
  const WallPort& last = plan.ports().back();
  return static_cast<uint32_t>(fpga::kPositionTables + last.port * map::kPortTableSize +
                               4 * (writtenEntries(last.cable) - 1));
}

uint32_t savedAt(uint32_t fpgaAddress) {
  if (fpgaAddress >= fpga::kPositionTables)
    return flash::kPositionTables + fpgaAddress - fpga::kPositionTables;
  for (std::size_t page = 0; page < kCountPages.size(); ++page)
    if (fpgaAddress - kCountPages[page] < 4 * kCountSlot)
      return flash::kNumberTable + kSavedCounts[page] + fpgaAddress - kCountPages[page];
  return flash::ofFeature(fpgaAddress);
}

}  // namespace parlctl
