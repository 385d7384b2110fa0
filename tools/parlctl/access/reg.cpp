// reg read, reg write: registers of the sending card and, by number, of the cards behind its ports.
#include "access.h"
#include "commands.h"

namespace parlctl {

void addReg(Verb& root, const Options& options) {
  addAccess(root, options,
            {.name = "reg",
             .description = "Read and write registers",
             .deviceType = "0",
             .addDeviceType =
                 [](Verb& verb, AccessArguments& arguments) {
                   verb.option("--device-type", "N", arguments.deviceType,
                               "0 sending card, 1 receiving card, 2 multi-function card, 3 distribution, "
                               "4 3D launcher");
                 },
             .readExample = "reg read 0x02100000:16 0x02300010:4",
             .writeExample = "reg write 0x02300010=01020304 --verify",
             .writeNote = nullptr});
}

}  // namespace parlctl
