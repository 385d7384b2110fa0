// The board directory: what an outage has to say to the next start, and the daemon's program.
#pragma once

namespace simboard {

// The next start switches the board on.
void forgetPowered();

// The next start, in this process or of its next program, goes on with the journal.
void markReboot();

// Runs the daemon's program in this process from the beginning, with the same arguments.
[[noreturn]] void startProgramAgain();

}  // namespace simboard
