// save: the parameters into the flash.
#include "commands.h"
#include "sendercommand.h"

namespace parlctl {

void addSave(Verb& root, const Options& options) {
  root.verb("save", "Save the card's parameters in its flash").run([&options] {
    peer::Peer daemon = options.connect();
    giveCommand(options, daemon, ORVE_MCUC::command::kSave,
                "the card saves its parameters; the next start shows whether it could");
  });
}

}  // namespace parlctl
