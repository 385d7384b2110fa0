// reload: the FPGA anew from the flash.
#include "commands.h"
#include "sendercommand.h"

namespace parlctl {

void addReload(Verb& root, const Options& options) {
  root.verb("reload", "Restore the card's FPGA from the flash")
      .note("Not while a factory reset is pending: the card then ignores it")
      .run([&options] {
        peer::Peer daemon = options.connect();
        giveCommand(options, daemon, ORVE_MCUC::command::kReloadProgram,
                    "the card restores its FPGA from the flash");
      });
}

}  // namespace parlctl
