// The images from flash. An image that cannot be read keeps what it holds, and remembers that it was not
// loaded. Callers hold the configuration lock.
#pragma once

#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

struct DeviceState;

// DriverUtil's results. A failure is logged with the words that are given, if any.
int loadFeature(RegisterImages& images);
int loadGlobal(RegisterImages& images, FailureWords words = {});  // once; 0 from then on
int loadPortTable(RegisterImages& images, unsigned port);
int loadNumberTable(RegisterImages& images, FailureWords words = {});
int loadScreenPara(RegisterImages& images, FailureWords words = {});  // bytes 0..14
int loadRole(DeviceState& device, FailureWords words = {});           // PbufMorSMode

}  // namespace ORVE_MCUC
