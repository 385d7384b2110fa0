// The images from flash. An image that cannot be read keeps what it holds, and remembers that it was not
// loaded. Callers hold the configuration lock.
#pragma once

#include "maps/fpgamap.h"
#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

class Data_Global;

// Registers of the hardware itself: what flash holds of them is the last run's.
struct HardwareStatus {
  uint32_t first;
  std::size_t length;
};
inline constexpr HardwareStatus kHardwareStatus[] = {
    {fpga::kRedundancyPorts1To4, 2}, {fpga::kRedundancyPorts5To8, 2}, {fpga::kRedundancyPorts9To16, 2},
    {fpga::kNetLinkPorts9To16, 2},   {fpga::kFiberLink, 1},           {fpga::kFiberToNetStatus, 2}};

// DriverUtil's results.
int loadFeature(RegisterImages& images);
int loadFeatureLate(RegisterImages& images);  // the hardware's status is today's by now, and stays
int loadGlobal(RegisterImages& images);       // once; 0 from then on
int loadPortTable(RegisterImages& images, unsigned port);
int loadNumberTable(RegisterImages& images);
int loadScreenPara(RegisterImages& images);  // bytes 0..14
int loadRole(Data_Global& store);            // PbufMorSMode, which stays as it is when it cannot be read

// Tries once more what could not be loaded. Before an image is changed or saved: what is put into it must not
// be lost to a read that comes later. What comes late goes to the FPGA as the restore would have written it.
void loadWhatIsMissing(Data_Global& store);

}  // namespace ORVE_MCUC
