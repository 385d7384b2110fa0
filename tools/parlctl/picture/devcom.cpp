// devcom show, set: the communication mode of the device.
#include <fstream>
#include <memory>
#include <optional>

#include "commands.h"
#include "maps/registermap.h"
#include "peer/peer.h"

namespace parlctl {

namespace {

namespace reg = ORVE_MCUC::reg;

constexpr std::string_view kVariable = "devcom_mode=";

// The environment variable, which no register reads, from a board's file beside the daemon.
std::optional<std::string> variableOf(const Options& options) {
  if (!options.besideBoard()) return {};
  std::ifstream file(options.board().directory() / "etc/sysconf.env");
  for (std::string line; std::getline(file, line);)
    if (line.starts_with(kVariable)) return line.substr(kVariable.size());
  return "";
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const uint8_t stored = daemon.read(reg::kCommunicationMode, 1).at(0);
  const auto variable = variableOf(options);
  std::string text = "flash    " + std::to_string(stored) + ", which a set does not change";
  if (variable) text += "\nvariable " + (variable->empty() ? "not set" : *variable) + " (the board's file)";
  options.print({{{"flash", stored}, {"variable", variable ? Json(*variable) : Json()}}, text});
}

void set(const Options& options, const std::string& mode) {
  peer::Peer daemon = options.connect();
  daemon.write(reg::kCommunicationMode, {static_cast<uint8_t>(number(mode, 2))});
  const auto variable = variableOf(options);
  const Outcome outcome = !variable           ? Outcome::Accepted
                          : *variable == mode ? Outcome::Verified
                                              : Outcome::Mismatch;
  const std::string seen = !variable           ? "accepted: no register reads the variable"
                           : *variable == mode ? "verified: the board's file has it"
                                               : "mismatch: the board's file has '" + *variable + "'";
  options.print({{{"mode", number(mode)}}, "communication mode " + mode + '\n' + seen, outcome});
}

}  // namespace

void addDevcom(Verb& root, const Options& options) {
  Verb& devcom = root.verb("devcom", "The communication mode of the device");
  devcom.verb("show", "What is stored, and what was set").run([&options] { show(options); });
  auto mode = std::make_shared<std::string>();
  devcom.verb("set", "Set the environment variable devcom_mode")
      .operand("MODE", *mode, "The mode")
      .oneOf({"0", "1", "2"})
      .example("devcom set 1")
      .run([&options, mode] { set(options, *mode); });
}

}  // namespace parlctl
