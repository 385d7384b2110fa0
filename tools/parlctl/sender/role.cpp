// role: master or slave.
#include <memory>

#include "cardfeatures.h"
#include "commands.h"
#include "maps/fpgamap.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
using peer::Bytes;

Bytes rolesOf(const Bytes& image) {
  Bytes roles;
  for (unsigned port = 0; port < peer::kPorts; ++port) roles.push_back(image[fpga::portRole(port)]);
  return roles;
}

Comparison comparePorts(peer::Peer& daemon, bool slave) {
  const Bytes wanted(peer::kPorts, slave ? fpga::kBackup : fpga::kMaster);
  const Bytes found = rolesOf(readImage(daemon));
  if (found == wanted) return {Outcome::Verified, ""};
  return {Outcome::Mismatch, "its ports are " + peer::toHex(found)};
}

void show(const Options& options, peer::Peer& daemon) {
  const Bytes image = readImage(daemon);
  const Feature& role = featureAt(fpga::kBackupMark);
  // Whatever is not the slave's byte is a master's.
  const std::string word =
      valueText(role, std::span(image).subspan(role.offset, 1)) == "slave" ? "slave" : "master";
  const std::string ports = peer::toHex(rolesOf(image));
  options.print({{{"role", word}, {"ports", ports}}, "role     " + word + "\nports    " + ports});
}

void set(const Options& options, peer::Peer& daemon, const std::string& word) {
  const Feature& role = featureAt(fpga::kBackupMark);
  Result result = setFeature(options, daemon, role, valueBytes(role, word));
  if (result.outcome == Outcome::Verified) {
    const Comparison seen =
        lookUntil(options.patience(), [&] { return comparePorts(daemon, word == "slave"); });
    result.outcome = seen.outcome;
    result.text = std::string(textOf(seen.outcome).word) + ": the card is a " + word +
                  (seen.text.empty() ? ", and so are its sixteen ports" : ", but " + seen.text);
  }
  options.print({{{"role", word}}, result.text, result.outcome});
}

}  // namespace

void addRole(Verb& root, const Options& options) {
  const auto word = std::make_shared<std::string>();
  root.verb("role", "Whether the card is a master or a slave, or make it one")
      .optionalOperand("ROLE", *word, "What it shall be; without it, what it is")
      .oneOf({"master", "slave"})
      .note("A change clears the role table of the configuration tools")
      .example("role slave")
      .run([&options, word] {
        peer::Peer daemon = options.connect();
        word->empty() ? show(options, daemon) : set(options, daemon, *word);
      });
}

}  // namespace parlctl
