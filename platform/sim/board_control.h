// hw/control.bin: clock offset, fault counters and sensor readings, which other processes may change at any
// time.
#pragma once

namespace simboard {

// Maps the page; a new one is given its mark and the sensors' readings of board.conf. False: not mapped.
bool openControl();
void closeControl();

}  // namespace simboard
