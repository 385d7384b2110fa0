#include "wall_daemon.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <thread>

#include "calc/screenrecord.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"

namespace parlctl {

namespace {

using peer::Bytes;
namespace map = ORVE_MCUC;
namespace reg = ORVE_MCUC::reg;
namespace fpga = ORVE_MCUC::fpga;
namespace shortcut = ORVE_MCUC::shortcut;

constexpr std::size_t kWrittenEnd = shortcut::kCardsPerPortAt + 2;  // mode to cards per port go in one write

constexpr peer::milliseconds kShortestWait{5000};
constexpr peer::milliseconds kPause{50};

std::span<const uint8_t, shortcut::kUsedSize> used(const Bytes& record) {
  return std::span(record).first<shortcut::kUsedSize>();
}

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
  const Bytes record = daemon.read(reg::kShortcutConfigScreen, shortcut::kRecordSize);
  Configured configured{.screen = shortcut::smartScreenOf(used(record)),
                        .inForce = record[shortcut::kStatusAt] == shortcut::kSmart};
  configured.screen.card = cardSize(daemon);
  return configured;
}

uint16_t copperLinks(std::span<const uint8_t> registers) {
  std::array<uint8_t, fpga::kNetLinks.size()> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = registers[fpga::kNetLinks[i]];
  return fpga::netLinkWord(bytes);
}

unsigned linkedPorts(peer::Peer& daemon) {
  const Bytes registers = daemon.read(reg::kTestPrint, fpga::kFiberBelowLink + 4);
  const unsigned links = copperLinks(registers) | map::le16(registers, fpga::kFiberBelowLink) |
                         map::le16(registers, fpga::kFiberBelowLink + 2);
  const auto count = static_cast<unsigned>(std::min<int>(std::countr_one(links), map::kMappedPorts));
  return count == 0 ? map::kMappedPorts : count;
}

void submit(peer::Peer& daemon, const SmartScreen& screen) {
  Bytes record = daemon.read(reg::kShortcutConfigScreen, shortcut::kRecordSize);
  shortcut::putSmartScreen(std::span(record).first<shortcut::kUsedSize>(), screen);
  daemon.write(reg::kShortcutConfigScreen + shortcut::kModeAt,
               Bytes(record.begin() + shortcut::kModeAt, record.begin() + kWrittenEnd));
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
