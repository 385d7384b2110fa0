// status: what the sending card shows of its links, roles, cards and wall. Everything is read, as any peer
// may, so that it can be asked while LSD is connected.
#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <span>

#include "calc/screenrecord.h"
#include "commands.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "wall_daemon.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
namespace reg = ORVE_MCUC::reg;
namespace shortcut = ORVE_MCUC::shortcut;
using ORVE_MCUC::le16;
using peer::Bytes;

constexpr std::size_t kFeatureRegisters = 0x200;

// Nothing when the daemon refuses or has less to say.
std::optional<Bytes> ask(peer::Peer& daemon, uint32_t address, std::size_t length) {
  peer::Frame reply = daemon.exchange({.address = address, .length = static_cast<uint16_t>(length)});
  if (reply.ack != 0 || reply.data.size() < length) return std::nullopt;
  return std::move(reply.data);
}

// The FPGA's registers; nothing when all are zero, which is also what the daemon says of an FPGA that it
// cannot read.
std::optional<Bytes> askFpga(peer::Peer& daemon) {
  auto registers = ask(daemon, reg::kTestPrint, kFeatureRegisters);
  if (registers && std::ranges::all_of(*registers, [](uint8_t byte) { return byte == 0; })) registers.reset();
  return registers;
}

std::vector<unsigned> portsOf(unsigned bits) {
  std::vector<unsigned> ports;
  for (unsigned port = 0; port < peer::kPorts; ++port)
    if ((bits >> port & 1) != 0) ports.push_back(port);
  return ports;
}

// Registers that lie apart as one text of digits.
std::string digits(const Bytes& registers, std::initializer_list<std::pair<uint32_t, std::size_t>> blocks) {
  std::string text;
  for (const auto& [at, length] : blocks) text += peer::toHex(std::span(registers).subspan(at, length));
  return text;
}

Json size(unsigned width, unsigned height) {
  return {{"width", width}, {"height", height}};
}

// Null stands for what was not told.
Json ofFpga(const std::optional<Bytes>& told) {
  if (!told) return {{"links", nullptr}, {"ports", nullptr}, {"fiber", nullptr}, {"screen", nullptr}};
  const Bytes& at = *told;
  return {{"links",
           {{"copper", portsOf(copperLinks(at))},
            {"fiber1", portsOf(le16(at, fpga::kFiberBelowLink))},
            {"fiber2", portsOf(le16(at, fpga::kFiberBelowLink + 2))}}},
          {"ports",
           {{"roles", digits(at, {{fpga::kMasterSlavePorts1To4, 4},
                                  {fpga::kMasterSlavePorts5To8, 4},
                                  {fpga::kMasterSlavePorts9To16, 8}})},
            {"redundancy", digits(at, {{fpga::kRedundancyPorts1To4, 1},
                                       {fpga::kRedundancyPorts5To8, 1},
                                       {fpga::kRedundancyPorts9To16, 2}})},
            {"optical_redundancy", digits(at, {{fpga::kOptRedundancy, 6}})}}},
          {"fiber",
           {{"module", digits(at, {{fpga::kFiberLink, 1}})},
            {"redundancy", digits(at, {{fpga::kFiberRedundancy, 1}})},
            {"to_net", digits(at, {{fpga::kFiberToNetStatus, 2}})}}},
          {"screen", size(le16(at, fpga::kScreenWidth), le16(at, fpga::kScreenHeight))}};
}

Json ofCards(const std::optional<Bytes>& told) {
  return told ? size(le16(*told, 0), le16(*told, 2)) : Json();
}

std::string howConfigured(uint8_t status) {
  switch (status) {
    case shortcut::kSmart:
      return "smart";
    case shortcut::kAdvanced:
      return "advanced";
    case shortcut::kByTables:
      return "tables";
    default:
      return "no";
  }
}

Json ofWall(const std::optional<Bytes>& told) {
  if (!told) return nullptr;
  const ORVE_MCUC::SmartScreen screen =
      shortcut::smartScreenOf(std::span<const uint8_t>(*told).first<shortcut::kUsedSize>());
  return {{"configured", howConfigured((*told)[shortcut::kStatusAt])},
          {"rows", screen.rows},
          {"columns", screen.columns},
          {"cards_per_port", screen.cardsPerPort},
          {"mode", screen.mode}};
}

// "copper 0 1 2 3, fiber1 -"
std::string statusText(const Json& shown) {
  std::string text;
  for (const auto& [key, value] : shown.items()) {
    text += (text.empty() ? "" : "\n") + key + std::string(9 - key.size(), ' ') + words(value);
  }
  return text;
}

void status(const Options& options) {
  peer::Peer daemon = options.connect(peer::toolServiceCode());
  Json shown = ofFpga(askFpga(daemon));
  shown["cards"] = ofCards(ask(daemon, reg::kReceivingCardSize, 4));
  shown["wall"] = ofWall(ask(daemon, reg::kShortcutConfigScreen, shortcut::kRecordSize));
  options.print({shown, statusText(shown)});
}

}  // namespace

void addStatus(Verb& root, const Options& options) {
  root.verb("status", "Links, roles, fiber, receiving cards and wall at a glance")
      .note(
          "Ports count from 0. Roles: a byte a port, 00 master, 80 backup; redundancy and fiber: as the FPGA "
          "has "
          "them. \"not told\": the daemon does not say, or says nothing but zeros of the FPGA.")
      .run([&options] { status(options); });
}

}  // namespace parlctl
