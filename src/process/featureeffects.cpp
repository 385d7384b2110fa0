// Effects of feature writes on image, FPGA, flash, peers and other parts of the device.
#include "process/featureeffects.h"

#include <cstdio>

#include "calc/bootscreen.h"
#include "calc/bypass.h"
#include "driverutil.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "platform/stinfo.h"
#include "process/basicpublicfunc.h"
#include "process/tprocess_ctl.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "DoWriteFeatureInfo";
constexpr uint8_t kGeneratorOff = 0;
constexpr uint8_t k3DOff = 0x28;
constexpr int kSetStatus = 1;

// A byte of the flash; without an answer nothing is known of it.
bool readByte(uint32_t address, uint8_t& value) {
  return readFlash(address, {&value, 1}, kCaller) == 0;
}

bool lowDelayIsPossible() {
  uint8_t generator = 0;
  uint8_t mode3D = 0;
  const bool generatorKnown = readByte(flash::kGenerator, generator);
  const bool mode3DKnown = readByte(flash::kMode3D, mode3D);
  PARLEND_TRACE(kInfo) << "============= Gen:" << generator << " #3D:" << mode3D;
  if (generatorKnown && mode3DKnown && generator == kGeneratorOff && mode3D == k3DOff) return true;
  PARLEND_TRACE(kInfo) << "======= bypass Mode and want open  LowdelayDisable, fail! close!! ====== Gen:"
                       << generator << " #3D:" << mode3D;
  return false;
}

// The written byte to its place in flash, ahead of the whole image.
int saveFirst(const FeatureWrite& write) {
  return writeFlash(flash::ofFeature(write.at), write.data.first(1));
}

}  // namespace

void FeatureWrite::decide(const FeatureDraft& change) {
  decided.put(change);
  putFeature(store, change);
}

FeatureBytes FeatureWrite::image() const {
  return featureBytes(store, decided);
}

void FeatureWrite::writeBlock(uint32_t first) const {
  putFeature(store, decided, first, 4, {});
}

void storeInImage(FeatureWrite& write) {
  FeatureDraft data;
  data.put(write.at, write.data);
  write.decide(data);
  write.store.DebugForScreenZero(0, write.address(), "Read software para!!");
}

// The bytes go into the image once more: who has asked the FPGA meanwhile has put its old ones there.
void writeToFpga(FeatureWrite& write) {
  writeThrough(write.store, write.store.SendParameterReg, write.at, write.at, write.data);
}

void saveImage(FeatureWrite& write) {
  Data_Global& store = write.store;
  const auto image = write.image();
  const uint16_t width = le16(image, fpga::kOutputWidth);
  const uint16_t height = le16(image, fpga::kOutputHeight);
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Close Bypass, dvi wide:" << width
                       << " heigh:" << height;
  if (store.loadStates.feature.failed()) {
    PARLEND_TRACE(kError)
        << "=== DoWriteFeatureInfo ===the feature image could not be loaded and is not saved.";
  } else {
    writeFlash(flash::kFeature, image, {kCaller, "====== WriteDataToFlash failed !"});
  }
  if (!write.sizeFollows) return;
  write.writeBlock(fpga::kScreenOffsetX);
  write.writeBlock(fpga::kOutputWidth);
  store.ChangeOutScreenPara(width, height);
}

void saveByte(FeatureWrite& write) {
  if (saveFirst(write) == 0) {
    PARLEND_TRACE(kInfo) << "======OptPort mode WriteDataToFlash ok !!! !";
  } else {
    PARLEND_TRACE(kError) << "=== DoWriteFeatureInfo =========OptPort mode WriteDataToFlash failed !";
  }
}

void saveBoardOption(FeatureWrite& write) {
  uint8_t option = write.value();
  if (const int ret = st_info_op(kSetStatus, write.address(), 1, &option))
    PARLEND_TRACE(kError) << "=== DoWriteFeatureInfo ===the status store refuses the board option. ret = "
                          << ret;
  if (saveFirst(write) == 0) {
    PARLEND_TRACE(kInfo) << "======Board option WriteDataToFlash ok : " << CTrace::hex << write.address()
                         << " = " << CTrace::hex << option;
  } else {
    PARLEND_TRACE(kError) << "=== DoWriteFeatureInfo =========Board option WriteDataToFlash failed !";
  }
}

void syncFlash(FeatureWrite&) {
  DriverUtil::getInstance()->runCommand("sync");
  PARLEND_TRACE(kInfo) << "============================ system SYNC ==============================";
}

void refuseLowDelayInBypass(FeatureWrite& write) {
  RelaxedByte& lowDelay = write.store.SendParameterReg[fpga::kLowDelay];
  if (write.store.SendParameterReg[fpga::kOffsetMode] == kNoOffset || lowDelayIsPossible()) return;
  lowDelay = 0;
  write.refused = true;
}

void pushFirstByte(FeatureWrite& write) {
  write.store.SendDatetoLSD(write.address(), write.data.first(1));
}

void pushCorrection(FeatureWrite& write) {
  PARLEND_TRACE(kInfo) << "============ correction =" << write.value() << " Leng=" << write.length();
  write.store.SendDatetoLSD(write.address(), write.data);
}

void setBootScreenTime(FeatureWrite& write) {
  PARLEND_TRACE(kInfo) << "======= Set RvCard PowerOn Time : sysconfig set boot_screen " << write.value();
  char command[64];
  std::snprintf(command, sizeof command, "sysconfig set boot_screen %u", bootScreenTime(write.value()));
  DriverUtil::getInstance()->runCommand(command);
}

void askForConnectionStep(FeatureWrite&) {
  Tprocess_ctl::OptToNetEnableOnce = true;
}

void tellSerialTimeout(FeatureWrite& write) {
  Addr_HardWareBrightnessAdjust::takeSerialTimeout(write.image()[fpga::kSerialTimeout]);
}

void beatSerialLink(FeatureWrite&) {
  Addr_HardWareBrightnessAdjust::heartbeat();
}

void setClock(FeatureWrite& write) {
  PARLEND_TRACE(kInfo) << "SM2W: Start set system time： year-mon-day and hour:min:sec";
  const auto image = write.image();
  BasicPublicFunc::getInstance()->SetHwTime(std::span(image).subspan<fpga::kClock, kClockBytes>());
}

void switchFpgaTest(FeatureWrite& write) {
  write.store.RWFPGATestflag = write.value();
  PARLEND_TRACE(kInfo) << "Read_Write FPGA 00: End  01: Start   Now:" << write.value();
}

void setFastCorrection(FeatureWrite& write) {
  write.store._gCorroentHighSpeed = write.value() == 1 ? 1 : 0;
}

}  // namespace ORVE_MCUC
