// card read, card write: registers of the cards behind the output ports.
#include <map>

#include "access.h"
#include "commands.h"

namespace parlctl {

namespace {

void addType(CLI::App& verb, AccessArguments& arguments) {
  const std::map<std::string, std::string> types{
      {"receiving", "1"}, {"multi", "2"}, {"distribution", "3"}, {"launcher", "4"}};
  verb.add_option("--type", arguments.deviceType, "receiving, multi, distribution or launcher, or 1 to 4")
      ->transform(CLI::CheckedTransformer(types).description(""))
      ->default_str("receiving");
}

}  // namespace

void addCard(CLI::App& app, const Options& options) {
  addAccess(app, options,
            {.name = "card",
             .description = "Read and write registers of the cards behind the output ports",
             .deviceType = "1",
             .addDeviceType = &addType,
             .readFooter = "Example: parlctl card read 0x02000017:4 --port 2 --card 5",
             .writeFooter = "Example: parlctl card write 0x02000001=80 --port 255 --card 65535\n"
                            "A long value takes its time, up to 25 ms for each 256 bytes: see --timeout"});
}

}  // namespace parlctl
