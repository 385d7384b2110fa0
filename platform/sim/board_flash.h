// hw/flash.bin, the parameter flash, and the factory image that can take its place at a reboot.
#pragma once

namespace simboard {

// Opens the flash and creates the factory image when it is missing. False: not possible.
bool openFlash();
void closeFlash();
// A prepared copy of the factory image becomes the flash.
void switchFlashOff();

}  // namespace simboard
