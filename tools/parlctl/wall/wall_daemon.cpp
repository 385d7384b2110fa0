#include "wall_daemon.h"

#include <algorithm>
#include <array>

#include "calc/screenrecord.h"
#include "maps/cardmap.h"
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
constexpr std::size_t kBlockEnd = shortcut::kPortYAt + 2;           // of a port's block, mode to Y likewise

constexpr std::array<uint8_t, 4> kMark{0xFF, 0xFF, 0xFF, 0xFF};  // no card lies there

std::span<const uint8_t, shortcut::kPortSize> blockIn(const Bytes& record, std::size_t port) {
  return std::span(record)
      .subspan(shortcut::kPortsAt + port * shortcut::kPortSize)
      .first<shortcut::kPortSize>();
}

std::vector<ReadBack> waysToRead(const Options& options, peer::Peer& daemon) {
  std::vector<ReadBack> ways{{"FPGA bus registers", [&daemon](uint32_t address, std::size_t length) {
                                return daemon.read(reg::kTestPrint + address, length);
                              }}};
  if (options.besideBoard())
    ways.push_back({"board files", [board = options.board()](uint32_t address, std::size_t length) {
                      return board.fpga(address, length);
                    }});
  return ways;
}

// The size that card 0 behind a port tells; nothing when none answers there.
std::optional<CardSize> askCard(peer::Peer& daemon, unsigned port) {
  const peer::Frame reply = daemon.exchange({.deviceType = map::card::kReceivingCard,
                                             .port = static_cast<uint8_t>(port),
                                             .address = map::card::kSize,
                                             .length = 4});
  if (reply.ack != 0 || reply.data.size() < 4) return std::nullopt;
  const CardSize size{map::le16(reply.data, 0), map::le16(reply.data, 2)};
  if (size.width == 0 || size.height == 0) return std::nullopt;
  return size;
}

Seen compared(const WallPlan& plan, const ReadBack& way, Scope scope, const char* where) {
  const Difference difference = firstDifference(plan, way, scope);
  if (difference.none())
    return {Outcome::Verified, std::string(where) + " (" + scope.text() + "; from " + way.name + ")"};
  return {Outcome::Differs, "differs: " + difference.text() + " (from " + way.name + ")"};
}

}  // namespace

MeasuredCard cardSize(peer::Peer& daemon) {
  for (const unsigned port : linkedPorts(daemon).value_or(std::vector<unsigned>{})) {
    if (port >= map::kMappedPorts) break;
    if (const auto size = askCard(daemon, port)) return {*size, true};
  }
  const Bytes size = daemon.read(reg::kReceivingCardSize, 4);
  return {{map::le16(size, 0), map::le16(size, 2)}, false};
}

WallRecord::WallRecord(Bytes bytes) : bytes_(std::move(bytes)) {
  bytes_.resize(kSize);
}

bool WallRecord::isAdvanced() const {
  return status() == shortcut::kAdvanced;
}

bool WallRecord::isEmpty() const {
  return bytes_[shortcut::kRowsAt] == 0 && bytes_[shortcut::kColumnsAt] == 0;
}

std::string WallRecord::statusText() const {
  switch (status()) {
    case shortcut::kSmart:
      return "smart configuration";
    case shortcut::kAdvanced:
      return "advanced configuration";
    case shortcut::kByTables:
      return "tables written directly";
    default:
      return "no configuration";
  }
}

SmartScreen WallRecord::smart(CardSize card) const {
  SmartScreen screen = shortcut::smartScreenOf(std::span(bytes_).first<shortcut::kUsedSize>());
  screen.card = card;
  return screen;
}

AdvancedScreen WallRecord::advanced() const {
  AdvancedScreen blocks;
  for (std::size_t port = 0; port < blocks.size(); ++port)
    blocks[port] = shortcut::advancedPortOf(blockIn(bytes_, port));
  return blocks;
}

void WallRecord::set(const SmartScreen& screen) {
  shortcut::putSmartScreen(std::span(bytes_).first<shortcut::kUsedSize>(), screen);
}

void WallRecord::set(const AdvancedScreen& blocks) {
  for (std::size_t port = 0; port < blocks.size(); ++port) {
    const auto block =
        std::span(bytes_).subspan(shortcut::kPortsAt + port * shortcut::kPortSize, shortcut::kPortSize);
    block[shortcut::kPortModeAt] = blocks[port].mode;
    block[shortcut::kPortRowsAt] = static_cast<uint8_t>(blocks[port].rows);
    block[shortcut::kPortColumnsAt] = static_cast<uint8_t>(blocks[port].columns);
    map::putLe16(block, shortcut::kPortXAt, blocks[port].x);
    map::putLe16(block, shortcut::kPortYAt, blocks[port].y);
  }
}

WallPlan WallRecord::plan(CardSize card) const {
  if (isAdvanced()) return {advanced(), card};
  return WallPlan(smart(card));
}

WallRecord readRecord(peer::Peer& daemon) {
  return WallRecord(daemon.read(reg::kShortcutConfigScreen, WallRecord::kSize));
}

void submitSmart(peer::Peer& daemon, const WallRecord& record) {
  const Bytes& bytes = record.bytes();
  daemon.write(reg::kShortcutConfigScreen + shortcut::kModeAt,
               Bytes(bytes.begin() + shortcut::kModeAt, bytes.begin() + kWrittenEnd));
}

void submitAdvanced(peer::Peer& daemon, const WallRecord& record) {
  for (std::size_t port = 0; port < map::kMappedPorts; ++port) {
    const auto block =
        blockIn(record.bytes(), port).subspan(shortcut::kPortModeAt, kBlockEnd - shortcut::kPortModeAt);
    daemon.write(static_cast<uint32_t>(reg::kShortcutConfigScreen + shortcut::kPortsAt +
                                       port * shortcut::kPortSize + shortcut::kPortModeAt),
                 Bytes(block.begin(), block.end()));
  }
  daemon.write(reg::kShortcutConfigScreen, {shortcut::kSubmitAdvanced});
}

uint16_t copperLinks(std::span<const uint8_t> registers) {
  std::array<uint8_t, fpga::kNetLinks.size()> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = registers[fpga::kNetLinks[i]];
  return fpga::netLinkWord(bytes);
}

std::optional<std::vector<unsigned>> linkedPorts(peer::Peer& daemon) {
  const Bytes registers = daemon.read(reg::kTestPrint, fpga::kFiberBelowLink + 4);
  if (std::ranges::all_of(registers, [](uint8_t byte) { return byte == 0; })) return std::nullopt;
  const unsigned links = copperLinks(registers) | map::le16(registers, fpga::kFiberBelowLink) |
                         map::le16(registers, fpga::kFiberBelowLink + 2);
  std::vector<unsigned> ports;
  for (unsigned port = 0; port < peer::kPorts; ++port)
    if ((links >> port & 1) != 0) ports.push_back(port);
  return ports;
}

Seen lookAtFpga(const Options& options, peer::Peer& daemon, const WallPlan& plan) {
  const std::vector<ReadBack> ways = waysToRead(options, daemon);
  try {
    return compared(plan, openWay(ways), scopeInFpga(plan), "in the FPGA");
  } catch (const peer::Error& error) {
    if (error.failure() == peer::Failure::TimeOut) throw;
    return {Outcome::Unknown, std::string("unknown: ") + error.what()};
  }
}

Seen lookAtFlash(const Options& options, const WallPlan& plan) {
  if (!options.besideBoard()) return {Outcome::Unknown, "not to be seen from here"};
  const ReadBack flash{"the board files", [board = options.board()](uint32_t address, std::size_t length) {
                         return board.flash(savedAt(address), length);
                       }};
  return compared(plan, flash, {}, "in the flash");
}

CalculationWitness::CalculationWitness(peer::Peer& daemon, const WallPlan& plan)
    : daemon_(daemon), address_(reg::kTestPrint + lastEntryAddress(plan)) {
  try {
    before_ = entry();
    daemon_.write(address_, Bytes(kMark.begin(), kMark.end()));
    works_ = std::ranges::equal(entry(), kMark);
  } catch (const peer::Error& error) {
    if (error.failure() == peer::Failure::TimeOut || error.failure() == peer::Failure::NoDaemon) throw;
  }
}

CalculationWitness::~CalculationWitness() {
  try {
    if (works_ && !hasSeen()) daemon_.write(address_, before_);
  } catch (const peer::Error&) {
    // The daemon has gone, and with it the calculation.
  }
}

Bytes CalculationWitness::entry() {
  return daemon_.read(address_, kMark.size());
}

bool CalculationWitness::hasSeen() {
  seen_ = seen_ || (works_ && !std::ranges::equal(entry(), kMark));
  return seen_;
}

}  // namespace parlctl
