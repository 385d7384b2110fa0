// status: what the sending card shows of its links, roles, cards and wall. Everything is read, as any peer
// may, so that it can be asked while LSD is connected.
#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <span>

#include "commands.h"
#include "helptext.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "report.h"
#include "values.h"
#include "wall_daemon.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
namespace reg = ORVE_MCUC::reg;
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

// What the wall says of each port, the plan's where there is one.
std::string carriesText(const WallPort& port) {
  if (port.duplicateOf) return "the same as port " + std::to_string(*port.duplicateOf);
  if (!port.used) return "-";
  return countText(port.chain.size(), "card") + " at " + pairText(port.offset);
}

std::string linkText(const Json& links, unsigned port) {
  std::string text;
  for (const auto& [medium, ports] : links.items())
    if (std::ranges::find(ports, Json(port)) != ports.end()) text += (text.empty() ? "" : "+") + medium;
  return text.empty() ? "none" : text;
}

std::string roleText(uint8_t role) {
  return role == fpga::kMaster ? "master"
                               : (role == fpga::kBackup ? "backup" : "0x" + peer::toHex(std::span(&role, 1)));
}

// Ports that carry something or are linked.
Json outputsOf(const Bytes& registers, const Json& links, const std::optional<WallPlan>& plan) {
  Json outputs = Json::array();
  for (unsigned port = 0; port < peer::kPorts; ++port) {
    const WallPort* carried = plan && port < plan->ports().size() ? &plan->ports()[port] : nullptr;
    const std::string link = linkText(links, port);
    if (link == "none" && (carried == nullptr || !carried->used)) continue;
    outputs.push_back(
        {{"port", port},
         {"link", link},
         {"role", roleText(registers[fpga::portRole(port)])},
         {"cards", carried != nullptr ? Json(carried->chain.size()) : Json(0)},
         {"duplicate_of", carried != nullptr && carried->duplicateOf ? Json(*carried->duplicateOf) : Json()},
         {"carries", carried != nullptr ? carriesText(*carried) : "-"}});
  }
  return outputs;
}

// The plan that the record stands for; nothing when it stands for none.
std::optional<WallPlan> planOf(const WallRecord& record, CardSize card) {
  try {
    return record.plan(card);
  } catch (const peer::Error&) {
    return std::nullopt;
  }
}

Json wallJson(const WallRecord& record, const SmartScreen& screen, const Seen& seen) {
  return {{"configured", record.statusText()},
          {"rows", screen.rows},
          {"columns", screen.columns},
          {"cards_per_port", screen.cardsPerPort},
          {"mode", screen.mode},
          {"fpga", seen.text},
          {"in_force", seen.outcome == Outcome::Verified}};
}

std::string column(const std::string& text, std::size_t width) {
  return text + std::string(text.size() < width ? width - text.size() : 1, ' ');
}

std::string outputLines(const Json& outputs) {
  if (outputs.empty()) return "\nports    none is linked, and none carries anything";
  std::string text = "\n\nport  link            role    carries";
  for (const Json& output : outputs)
    text += '\n' + column(std::to_string(output["port"].get<unsigned>()), 6) +
            column(output["link"].get<std::string>(), 16) + column(output["role"].get<std::string>(), 8) +
            output["carries"].get<std::string>();
  return text;
}

std::string wallLines(const WallRecord& record, const std::optional<WallPlan>& plan, const Seen& seen) {
  if (!plan) return "wall     " + record.statusText() + (record.isEmpty() ? "" : ", which is not mapped");
  return "wall     " + sizeText({plan->rows(), plan->columns()}) + " cards, " + sizeText(plan->size()) +
         " pixels (" + record.statusText() + ")\n" + wrapped("         " + seen.text, 9);
}

}  // namespace

Result statusResult(const Options& options, peer::Peer& daemon) {
  const auto registers = askFpga(daemon);
  Json shown = ofFpga(registers);
  const MeasuredCard card = cardSize(daemon);
  const WallRecord record = readRecord(daemon);
  const std::optional<WallPlan> plan = planOf(record, card.size);
  const Seen seen = plan ? lookAtFpga(options, daemon, *plan) : Seen{Outcome::Differs, "not mapped"};
  shown["cards"] = size(card.size.width, card.size.height);
  shown["cards_measured"] = card.measured;
  shown["wall"] = wallJson(record, record.smart(card.size), seen);
  std::string text = wrapped("links    " + words(shown["links"]), 9) + "\ncards    width " +
                     std::to_string(card.size.width) + ", height " + std::to_string(card.size.height) +
                     (card.measured ? ", measured" : ", assumed") + "\nscreen   " + words(shown["screen"]) +
                     "\nfiber    " + words(shown["fiber"]) + '\n' + wallLines(record, plan, seen);
  if (registers) {
    shown["outputs"] = outputsOf(*registers, shown["links"], plan);
    text += outputLines(shown["outputs"]);
  }
  return {shown, text};
}

void addStatus(Verb& root, const Options& options) {
  root.verb("status", "Which ports are linked and what they carry, cards, screen and wall at a glance")
      .note(
          "Ports count from 0. Cards are measured when one has told its size, and assumed otherwise. \"not "
          "told\": the "
          "daemon does not say, or says nothing but zeros of the FPGA. With --json also roles and redundancy "
          "as bytes.")
      .run([&options] {
        peer::Peer daemon = options.connect();
        options.print(statusResult(options, daemon));
      });
}

}  // namespace parlctl
