// reg read, reg write: registers of the sending card and, by number, of the cards behind its ports.
#include "access.h"
#include "commands.h"

namespace parlctl {

void addReg(CLI::App& app, const Options& options) {
  addAccess(app, options,
            {.name = "reg",
             .description = "Read and write registers",
             .deviceType = "0",
             .addDeviceType =
                 [](CLI::App& verb, AccessArguments& arguments) {
                   verb.add_option("--device-type", arguments.deviceType,
                                   "0 sending card, 1 receiving card, 2 multi-function card, 3 distribution, "
                                   "4 3D launcher")
                       ->capture_default_str();
                 },
             .readFooter = "Example: parlctl reg read 0x02100000:16 0x02300010:4",
             .writeFooter = "Example: parlctl reg write 0x02300010=01020304"});
}

}  // namespace parlctl
