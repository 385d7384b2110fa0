// The board's power. While it is off, no call of the daemon's does anything: all of them fail.
#pragma once

#include <functional>

namespace simboard {

enum class Outage { Cut, Reboot };

bool hasPower();
void setPower(bool on);

// Says that the power is off and the next start switches the board on, and carries out what an outage means
// for this process: it ends with status 75 at a cut, and runs the daemon's program again at a reboot.
void powerGoes(Outage why);

// Another meaning, for a process that is to survive: the function may throw, or return, and then the board
// stays without power until it is started again. Empty: the usual one.
void onOutage(std::function<void(Outage)> then);

}  // namespace simboard
