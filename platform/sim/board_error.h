// What the simulated board has to say on standard error. Never waits for a reader and is never ended by one
// that left: a line that is not taken at once is left out. Any thread.
#pragma once

#include <string>

namespace simboard {

void errorLine(std::string line);

// At most one line a second of each kind; the next one tells how many were left out.
enum class Complaint { Listener, SlowPeer, UnknownCommand };
void complain(Complaint about, const std::string& line);

}  // namespace simboard
