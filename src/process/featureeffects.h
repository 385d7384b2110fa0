// What the write of a feature register does; which write has which effects, and in what order, says the table
// in featurewrite.cpp.
#pragma once

#include <cstdint>
#include <span>

#include "maps/registermap.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {

// A write that is being carried out. Callers hold the configuration lock.
struct FeatureWrite {
  Data_Global& store;
  uint32_t at;                    // feature register
  std::span<const uint8_t> data;  // at least a byte, inside the image
  FeatureDraft decided = {};      // the data, and what the write has made of it
  bool refused = false;           // nothing more is done
  bool sizeFollows = false;       // the output size has changed with the offset mode and is written at last

  uint32_t address() const { return reg::ofFeature(at); }
  std::size_t length() const { return data.size(); }
  uint8_t value() const { return data.front(); }

  // Into the image, to be saved whatever becomes of the image.
  void decide(const FeatureDraft& change);
  // The image as this write leaves it. The image itself may show older bytes: whoever asks the FPGA puts
  // there what the FPGA holds, which is told at last or not at all.
  FeatureBytes image() const;
  // Four bytes of that to image and FPGA.
  void writeBlock(uint32_t first) const;
};

// Image, FPGA and flash.
void storeInImage(FeatureWrite& write);
void writeToFpga(FeatureWrite& write);
void saveImage(FeatureWrite& write);
void saveByte(FeatureWrite& write);
void saveBoardOption(FeatureWrite& write);
void syncFlash(FeatureWrite& write);

// Peers and other parts of the device.
void refuseLowDelayInBypass(FeatureWrite& write);
void pushFirstByte(FeatureWrite& write);
void pushCorrection(FeatureWrite& write);
void setBootScreenTime(FeatureWrite& write);
void askForConnectionStep(FeatureWrite& write);
void tellSerialTimeout(FeatureWrite& write);
void beatSerialLink(FeatureWrite& write);
void setClock(FeatureWrite& write);
void switchFpgaTest(FeatureWrite& write);
void setRole(FeatureWrite& write);
void setFastCorrection(FeatureWrite& write);

// Offset modes.
void logOffsetMode(FeatureWrite& write);
void takeOffsetOfTool(FeatureWrite& write);
void takeOffsetOfLsd(FeatureWrite& write);
void changeOffsetMode(FeatureWrite& write);

// Output size.
void clearOutputSize(FeatureWrite& write);
void computeOutputSize(FeatureWrite& write);

}  // namespace ORVE_MCUC
