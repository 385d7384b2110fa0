// card read, card write: registers of the cards behind the output ports.
#include "access.h"
#include "commands.h"

namespace parlctl {

void addCard(Verb& root, const Options& options) {
  addAccess(root, options,
            {.name = "card",
             .description = "Read and write registers of the cards behind the output ports",
             .deviceType = "receiving",
             .addDeviceType =
                 [](Verb& verb, AccessArguments& arguments) {
                   verb.option("--type", "KIND", arguments.deviceType, "The kind of card");
                   std::vector<std::string> kinds(kCardKinds.begin(), kCardKinds.end());
                   for (std::size_t type = 1; type <= kCardKinds.size(); ++type)
                     kinds.push_back(std::to_string(type));
                   verb.oneOf(std::move(kinds));
                 },
             .readExample = "card read 0x02000017:4 --port 2 --card 5",
             .writeExample = "card write 0x02000001=80 --port 255 --card 65535",
             .writeNote = "A long value takes its time, up to 25 ms for each 256 bytes: see --timeout"});
}

}  // namespace parlctl
