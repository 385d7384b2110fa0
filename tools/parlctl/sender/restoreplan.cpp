#include "restoreplan.h"

#include <algorithm>
#include <array>

#include "cardfeatures.h"
#include "maps/fpgamap.h"

namespace parlctl {

namespace {

using peer::Bytes;
namespace fpga = ORVE_MCUC::fpga;

Bytes part(const Bytes& bytes, std::size_t at, std::size_t length) {
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
  return {first, first + static_cast<std::ptrdiff_t>(length)};
}

void addIfDifferent(RestorePlan& plan, std::string place, uint32_t address, Bytes wanted, Bytes found) {
  if (wanted != found)
    plan.changes.push_back({std::move(place), address, std::move(wanted), std::move(found)});
}

RestorePlan planBlocks(const BackupSection& section, const Bytes& wanted, const Bytes& found) {
  RestorePlan plan;
  for (uint32_t at = 0; at < section.length; at += section.block) {
    const uint32_t length = std::min(section.block, section.length - at);
    std::string place(section.name);
    if (at != 0) place += " + " + hexAddress(at);
    addIfDifferent(plan, place, section.address + at, part(wanted, at, length), part(found, at, length));
  }
  return plan;
}

// What no backup can bring back: identity and clock before the port roles, the bypass mode at the end.
constexpr uint32_t kFirst = fpga::kMasterSlavePorts1To4;
constexpr uint32_t kEnd = fpga::kSignedOffsetX;

// A named register goes whole, because a byte of it alone may mean something else; others byte by byte.
std::vector<Feature> unitsOfImage() {
  std::vector<Feature> units;
  for (uint32_t at = kFirst; at < kEnd; at += units.back().length) {
    const auto named = std::ranges::find_if(
        features(), [at](const Feature& feature) { return feature.offset == at && !feature.onBus; });
    units.push_back(named != features().end() ? *named : featureOf(hexAddress(at) + ":1"));
  }
  // A role gives all ports theirs, so that it goes first.
  std::ranges::stable_partition(units, [](const Feature& unit) { return unit.offset == fpga::kBackupMark; });
  return units;
}

RestorePlan planFeatures(const Bytes& wanted, const Bytes& found) {
  RestorePlan plan;
  for (const Feature& unit : unitsOfImage()) {
    const Bytes value = part(wanted, unit.offset, unit.length);
    const Bytes now = part(found, unit.offset, unit.length);
    if (value == now || unit.offset == fpga::kProbe) continue;
    if (unit.hardware)
      plan.kept.push_back(unit.name + " " + valueText(unit, now) + ", was " + valueText(unit, value));
    else
      plan.changes.push_back({"features: " + unit.name, unit.address(), value, now});
  }
  if (part(wanted, kEnd, kFeatureBytes - kEnd) != part(found, kEnd, kFeatureBytes - kEnd))
    plan.kept.push_back("offset mode and signed offsets (parlctl offset sets them)");
  return plan;
}

}  // namespace

RestorePlan planSection(const BackupSection& section, const Bytes& wanted, const Bytes& found) {
  if (section.restoring == Restoring::Features) return planFeatures(wanted, found);
  return planBlocks(section, wanted, found);
}

std::optional<WallRecord> wallToSubmit(const Bytes& wanted, const Bytes& found, CardSize card) {
  const WallRecord before(wanted);
  WallRecord record(found);
  if (before.isAdvanced())
    record.set(before.advanced());
  else if (!before.isEmpty())
    record.set(before.smart(card));
  else
    return std::nullopt;
  if (record.bytes() == found && record.isAdvanced() == before.isAdvanced()) return std::nullopt;
  return record;
}

}  // namespace parlctl
