// hw/fpga.bin: the FPGA bus, mapped shared.
#pragma once

#include <cstdint>

namespace simboard {

// Maps the bus. Switched on now: everything zero, then the status registers of board.conf. False: not mapped.
bool openFpga(bool switchedOn);
void closeFpga();

// Ports with a link over copper or either fiber path: bit p for port p.
uint16_t linkedPorts();

// Writes a register past the daemon's own calls, as the board's register tool does. Returns 0, -1 outside the
// bus.
int writeRegister(uint32_t address, uint8_t value);

}  // namespace simboard
