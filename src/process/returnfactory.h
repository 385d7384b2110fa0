// The return to factory settings. It fills a copy of the factory image, which replaces the parameter flash
// with the reboot that follows; the first boot then configures a screen of one card.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

// Type 0; 1: with factory network settings; 2: keeps scenes, device names and configuration files of the
// receiving cards. Any other type is carried out as 0. Whatever fails, the rest is done, and the reboot is
// due at the end. Returns 0. On the flag and status thread.
int ReturnFactory(uint8_t type);

}  // namespace ORVE_MCUC
