// The images from flash. An image that cannot be read keeps what it holds, and remembers that it was not
// loaded. Callers hold the configuration lock.
#pragma once

#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

class Data_Global;

// DriverUtil's results.
int loadFeature(RegisterImages& images);
int loadGlobal(RegisterImages& images);  // once; 0 from then on
int loadPortTable(RegisterImages& images, unsigned port);
int loadNumberTable(RegisterImages& images);
int loadScreenPara(RegisterImages& images);  // bytes 0..14
int loadRole(Data_Global& store);            // PbufMorSMode

// Tries once more what could not be loaded, and brings it to an FPGA that is there: a restore has left it
// out. Before an image is changed or saved: what is put into it must not be lost to a read that comes later.
void loadWhatIsMissing(Data_Global& store);

}  // namespace ORVE_MCUC
