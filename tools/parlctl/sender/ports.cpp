// ports: what the port tables say, compared with the calculation.
#include <algorithm>

#include "commands.h"
#include "helptext.h"
#include "maps/cardgeometry.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "wall_daemon.h"

namespace parlctl {

namespace {

using namespace ORVE_MCUC;
using peer::Bytes;

constexpr std::size_t kWindowRegisters = fpga::portWindow(kMappedPorts - 1) + fpga::kWindowSize;
constexpr std::size_t kEntries = 4;  // shown of a port's table
constexpr uint32_t kCountSlot = 0x20;
// The port-number table holds the counts of four ports in each of these places.
constexpr uint32_t kCountBlocks[] = {0x000, 0x080, 0x200, 0x280};

struct PortTables {
  Bytes registers;
  Bytes counts;
};

Json portJson(peer::Peer& daemon, const PortTables& tables, unsigned port) {
  const uint32_t window = fpga::portWindow(port);
  const Bytes entries =
      daemon.read(reg::kScanBoardPosition + port * static_cast<uint32_t>(kPortTableSize), 4 * kEntries);
  Json positions = Json::array();
  for (std::size_t at = 0; at < entries.size(); at += 4)
    positions.push_back(pairText({le16(entries, at), le16(entries, at + 2)}));
  return {{"port", port},
          {"width", le16(tables.registers, window)},
          {"height", le16(tables.registers, window + fpga::kWindowHeightAt)},
          {"x", le16(tables.registers, window + fpga::kWindowXAt)},
          {"y", le16(tables.registers, window + fpga::kWindowYAt)},
          {"cards", le16(tables.counts, kCountBlocks[port / 4] + kCountSlot * (port % 4))},
          {"entries", positions}};
}

std::string cell(const std::string& text, std::size_t width) {
  return text + std::string(text.size() < width ? width - text.size() : 1, ' ');
}

std::string lineOf(const Json& port) {
  std::string text = cell(port["port"].dump(), 6) +
                     cell(port["width"].dump() + " x " + port["height"].dump() + " at " + port["x"].dump() +
                              ", " + port["y"].dump(),
                          27) +
                     cell(port["cards"].dump(), 7);
  std::string entries;
  for (const Json& entry : port["entries"]) {
    const std::string more = (entries.empty() ? "" : "; ") + entry.get<std::string>();
    if (text.size() + entries.size() + more.size() > kColumns) break;
    entries += more;
  }
  return text + entries;
}

Seen beside(const Options& options, peer::Peer& daemon) {
  try {
    return lookAtFpga(options, daemon, readRecord(daemon).plan(cardSize(daemon).size));
  } catch (const peer::Error& error) {
    if (error.failure() != peer::Failure::Usage) throw;
    return {Outcome::Done, std::string("not compared: ") + error.what()};
  }
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const PortTables tables{daemon.read(reg::kTestPrint, kWindowRegisters),
                          daemon.read(reg::kFunCardPortNumber, 768)};
  Json ports = Json::array();
  std::string text = "port  window                     cards  first entries";
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    ports.push_back(portJson(daemon, tables, port));
    text += '\n' + lineOf(ports.back());
  }
  const Seen seen = beside(options, daemon);
  options.print({{{"ports", ports}, {"compared", seen.text}},
                 text + "\n" + wrapped(seen.text),
                 seen.outcome == Outcome::Verified ? Outcome::Done : seen.outcome});
}

}  // namespace

void addPorts(Verb& root, const Options& options) {
  root.verb("ports", "Windows, card counts and first entries of the port tables, beside the calculation")
      .note("Exit status 5: the FPGA holds something else than what the configured wall gives")
      .run([&options] { show(options); });
}

}  // namespace parlctl
