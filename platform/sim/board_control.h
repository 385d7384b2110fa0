// hw/control.bin: clock offset, fault counters and sensor readings, which other processes may change at any
// time.
#pragma once

namespace simboard {

// Maps the page; new sensors get their readings of board.conf. False: not mapped.
bool openControl();
void closeControl();

}  // namespace simboard
