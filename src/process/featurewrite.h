// Writes of feature registers: stored, written through to the FPGA, and what each of them does beyond that.
// On the work thread.
#pragma once

#include <cstdint>
#include <span>

namespace ORVE_MCUC {

// Carries out one write. One that does not lie inside the image of 512 bytes is refused with an Error line.
void DoWriteFeatureInfo(uint32_t address, std::span<const uint8_t> data);

}  // namespace ORVE_MCUC
