// The images from flash. An image that cannot be read keeps what it holds, and remembers that it was not
// loaded. Callers hold the configuration lock.
#pragma once

#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

// DriverUtil's results.
int loadFeature(RegisterImages& images);
int loadGlobal(RegisterImages& images);  // once; 0 from then on
int loadPortTable(RegisterImages& images, unsigned port);
int loadNumberTable(RegisterImages& images);
int loadScreenPara(RegisterImages& images);  // bytes 0..14

// Tries once more what could not be loaded. Before an image is changed or saved: what is put into it must not
// be lost to a read that comes later.
void loadWhatIsMissing(RegisterImages& images);

}  // namespace ORVE_MCUC
