#include "wall_daemon.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "mcucdatablock.h"
#include "proto/fpgamap.h"
#include "proto/registermap.h"

namespace parlctl {

namespace {

using peer::Bytes;
namespace map = ORVE_MCUC;
namespace reg = ORVE_MCUC::reg;
namespace fpga = ORVE_MCUC::fpga;

// Fields of the configuration record.
constexpr std::size_t kRecordLength = 32;
constexpr std::size_t kStatusAt = 0x00;
constexpr uint8_t kSmartStatus = 0xA8;
constexpr std::size_t kModeAt = 0x11;
constexpr std::size_t kRowsAt = 0x16;
constexpr std::size_t kColumnsAt = 0x17;
constexpr std::size_t kCardsAt = 0x18;
constexpr std::size_t kWrittenEnd = 0x1A;  // mode to cards per port go in one write

constexpr peer::milliseconds kShortestWait{5000};
constexpr peer::milliseconds kPause{50};

std::vector<ReadBack> waysToRead(const Options& options, peer::Peer& daemon) {
  std::vector<ReadBack> ways{{"position registers",
                              [&daemon](uint32_t address, std::size_t length) {
                                return daemon.read(
                                    address < fpga::kPositionTables
                                        ? reg::kFeature + address
                                        : reg::kScanBoardPosition + address - fpga::kPositionTables,
                                    length);
                              }},
                             {"FPGA bus registers", [&daemon](uint32_t address, std::size_t length) {
                                return daemon.read(reg::kTestPrint + address, length);
                              }}};
  // A daemon reached through another socket may have another board.
  if (options.socketPath.empty())
    ways.push_back({"board files", [board = options.board()](uint32_t address, std::size_t length) {
                      return board.fpga(address, length);
                    }});
  return ways;
}

}  // namespace

CardSize cardSize(peer::Peer& daemon) {
  const Bytes size = daemon.read(reg::kReceivingCardSize, 4);
  return {map::le16(size, 0), map::le16(size, 2)};
}

Configured configuredScreen(peer::Peer& daemon) {
  const Bytes record = daemon.read(reg::kShortcutConfigScreen, kRecordLength);
  return {.screen = {.rows = record[kRowsAt],
                     .columns = record[kColumnsAt],
                     .cardsPerPort = map::le16(record, kCardsAt),
                     .mode = record[kModeAt],
                     .card = cardSize(daemon)},
          .inForce = record[kStatusAt] == kSmartStatus};
}

unsigned linkedPorts(peer::Peer& daemon) {
  const Bytes registers = daemon.read(reg::kTestPrint, fpga::kFiberBelowLink + 4);
  constexpr std::array<uint32_t, 3> kCopper{fpga::kNetLinkPorts1To4, fpga::kNetLinkPorts5To8,
                                            fpga::kNetLinkPorts9To16};
  unsigned links =
      map::le16(registers, fpga::kFiberBelowLink) | map::le16(registers, fpga::kFiberBelowLink + 2);
  for (unsigned i = 0; i < kCopper.size(); ++i) links |= (registers[kCopper[i]] & 0x0FU) << (4 * i);
  unsigned count = 0;
  while (count < map::kMappedPorts && (links >> count & 1) != 0) ++count;
  return count == 0 ? map::kMappedPorts : count;
}

void submit(peer::Peer& daemon, const SmartScreen& screen) {
  Bytes record = daemon.read(reg::kShortcutConfigScreen, kRecordLength);
  record[kModeAt] = screen.mode;
  record[kRowsAt] = static_cast<uint8_t>(screen.rows);
  record[kColumnsAt] = static_cast<uint8_t>(screen.columns);
  map::putLe16(record, kCardsAt, screen.cardsPerPort);
  daemon.write(reg::kShortcutConfigScreen + kModeAt,
               Bytes(record.begin() + kModeAt, record.begin() + kWrittenEnd));
}

Verdict verify(const Options& options, peer::Peer& daemon, SmartScreen screen) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::max(kShortestWait, peer::milliseconds(options.timeoutMs));
  const std::vector<ReadBack> ways = waysToRead(options, daemon);
  const ReadBack& way = openWay(ways);
  for (;;) {
    const bool last = Clock::now() >= deadline;
    screen.card = cardSize(daemon);  // the daemon measures it on its way
    const WallPlan plan(screen);
    Difference difference = firstDifference(plan, way);
    if (last || difference.none()) return {plan, way.name, std::move(difference)};
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace parlctl
