// Waiting for the file by which the device says that the FPGA has been loaded.
#pragma once

namespace ORVE_MCUC {

bool fpgaLoadFlagExists();

// Returns when the flag file exists, when something happened in its directory, or after a second at the
// latest.
void waitForFpgaLoadFlag();

}  // namespace ORVE_MCUC
