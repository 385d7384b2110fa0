// The pages about registers and flash, as text from the tables of the daemon's maps.
#pragma once

#include <string>

namespace mappages {

std::string registersPage();  // docs/registers.md
std::string flashPage();      // docs/flash.md

}  // namespace mappages
