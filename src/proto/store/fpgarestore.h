// Images to an FPGA that has lost them. While the FPGA is not loaded nothing is written to it, and never what
// flash could not give. The answer is whether the FPGA has it now. Callers hold the configuration lock.
#pragma once

namespace ORVE_MCUC {

class Data_Global;

bool isOnline(const Data_Global& store);

// The feature image, in which values that no output runs with are replaced first, and the screen offset.
bool restoreFeature(Data_Global& store);
bool restorePortTable(Data_Global& store, unsigned port);
bool restoreNumberTable(Data_Global& store);

// The status registers of today's hardware into the feature image.
void readHardwareStatus(Data_Global& store);

}  // namespace ORVE_MCUC
