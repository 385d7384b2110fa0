// Prints on descriptor 3, in microseconds: the mapping of the largest wall as a calculation, a walk that
// works out each entry by itself, the road of a submission from the peer's write to the saved tables, and the
// same bytes written plainly.
#include <array>
#include <cstdio>
#include <vector>

#include "calc/mapping.h"
#include "calc/screenrecord.h"
#include "probe.h"
#include "process/tprocess.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kRounds = 200;
constexpr int kRoadRounds = 60;
// Ten ports with 1024 cards each.
constexpr SmartScreen kLargest{160, 64, 1024, 6, {128, 128}};

using Tables = std::vector<uint8_t>;

void mapAtOnce(Tables& tables) {
  const PortSplit split = splitOf(kLargest);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    fillPortTable(chainAt(kLargest, split, placeOf(split, port)),
                  std::span<uint8_t, kPortTableSize>(&tables[port * kPortTableSize], kPortTableSize));
  }
}

// Each entry finds its port, line and card by division.
void mapByEntry(Tables& tables) {
  const PortSplit split = splitOf(kLargest);
  constexpr auto kEntries = static_cast<uint32_t>(kMappedPorts * kPortTableEntries);
  for (uint32_t entry = 0; entry < kEntries; ++entry) {
    const auto port = static_cast<uint32_t>(entry / kPortTableEntries);
    const CardChain chain = chainAt(kLargest, split, port % split.UsedPortNum);
    const auto card = static_cast<uint32_t>(entry % kPortTableEntries % chain.cards());
    const CardPosition position = positionOf(chain, card / chain.lineLength, card % chain.lineLength);
    putLe16(tables, 4 * std::size_t{entry}, position.x);
    putLe16(tables, 4 * std::size_t{entry} + 2, position.y);
  }
}

// The peer's write through the space, its work item, and the mapping that the tick would start.
void submit() {
  IMD_proto3rd request;
  request.proto.m_ucCode = kCodeWrite;
  std::array<uint8_t, shortcut::kRecordSize> record{};
  shortcut::putSmartScreen(std::span(record).first<shortcut::kUsedSize>(), kLargest);
  request.proto.m_uiRegisterUnitAddress = reg::kShortcutConfigScreen + shortcut::kModeAt;
  request.proto.m_data.assign(record.begin() + shortcut::kModeAt,
                              record.begin() + shortcut::kCardsPerPortAt + 2);
  request.proto.m_usValidDataLength = static_cast<uint16_t>(request.proto.m_data.size());
  spaceAt(At<reg::kShortcutConfigScreen>{}).Ssh_cmd(request);
  Tprocess::Sprocess_CalculateParaOfSender(record.size(), reinterpret_cast<char*>(record.data()));
  Tprocess::CalculateParaOfSenderHandler();
}

// What a submission brings to FPGA and flash, and nothing else: the tables once to one file in blocks, and
// two saves of all parameters to another.
void writePlainly(int fpga, int flash, const Tables& tables) {
  for (std::size_t at = 0; at < tables.size(); at += 1024) bench::writeAt(fpga, &tables[at], 1024, at);
  for (int save = 0; save < 2; ++save) {
    for (const std::size_t length : {std::size_t{512}, std::size_t{512}, tables.size(), std::size_t{768}}) {
      bench::writeAt(flash, tables.data(), length, 0);
    }
  }
}

}  // namespace

int main(int, char** argv) {
  bench::startBoard(argv);
  Tables tables(kPortTablesSize);
  Tables check(kPortTablesSize);
  const double atOnce = bench::medianTime(kRounds, [&](int) { mapAtOnce(tables); });
  const double byEntry = bench::medianTime(kRounds, [&](int) { mapByEntry(check); });
  if (tables != check) return 1;
  const double road = bench::medianTime(kRoadRounds, [](int) { submit(); });
  const int fpga = bench::openBeside("/plain-fpga");
  const int flash = bench::openBeside("/plain-flash");
  const double plain = bench::medianTime(kRoadRounds, [&](int) { writePlainly(fpga, flash, tables); });
  dprintf(bench::kResultFd, "%f %f %f %f\n", atOnce, byEntry, road, plain);
  return 0;
}
