// hw/flash.bin, the parameter flash, and the factory image that can take its place when the board is switched
// on.
#pragma once

namespace simboard {

// Opens the flash and creates the factory image when it is missing. Switched on now: a prepared copy of the
// factory image becomes the flash's contents and is removed. False: not possible.
bool openFlash(bool switchedOn);
void closeFlash();

// Makes what was written durable.
bool syncFlash();

}  // namespace simboard
