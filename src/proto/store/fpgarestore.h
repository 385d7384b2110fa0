// Images to an FPGA that has lost them, never what flash could not give. Callers have asked whether the FPGA
// is loaded, and hold the configuration lock.
#pragma once

#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

class Data_Global;
struct DeviceState;

// Replaces values of the feature image that no output runs with: before it is restored.
void mendFeature(RegisterImages& images);
// The feature image and the screen offset.
void restoreFeature(RegisterImages& images);
void restorePortTable(RegisterImages& images, unsigned port);
void restoreNumberTable(RegisterImages& images);

// The status registers of today's hardware into the feature image.
void readHardwareStatus(RegisterImages& images);

// Tries once more what could not be loaded, and brings it to an FPGA that is there: a restore has left it
// out. Before an image is changed or saved: what is put into it must not be lost to a read that comes later.
// Asks itself whether the FPGA is loaded.
void loadWhatIsMissing(Data_Global& store);

}  // namespace ORVE_MCUC
