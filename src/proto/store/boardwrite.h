// Writes whose failure nobody can do more about than log it.
#pragma once

#include <cstdint>
#include <span>

namespace ORVE_MCUC {

// Write to the parameter flash, and to the FPGA bus. The driver's result; a failure is logged under the
// caller's name.
int writeFlash(uint32_t address, std::span<const uint8_t> bytes, const char* caller);
int writeFpga(uint32_t address, std::span<const uint8_t> bytes, const char* caller);

}  // namespace ORVE_MCUC
