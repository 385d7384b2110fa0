#include "process/featurewrite.h"

#include <array>

#include "logwords.h"
#include "maps/fpgamap.h"
#include "process/featureeffects.h"
#include "proto/store/fpgarestore.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kLastRegister = 0x1FF;
constexpr std::size_t kAny = 0;

// An effect of the writes that start at a register of a range.
struct EffectRow {
  uint32_t first;
  uint32_t last;
  std::size_t length;  // of the write in bytes, or kAny
  void (*carryOut)(FeatureWrite& write);
};

constexpr EffectRow everywhere(void (*carryOut)(FeatureWrite&)) {
  return {0, kLastRegister, kAny, carryOut};
}
constexpr EffectRow range(uint32_t first, uint32_t last, void (*carryOut)(FeatureWrite&)) {
  return {first, last, kAny, carryOut};
}
constexpr EffectRow at(uint32_t place, std::size_t length, void (*carryOut)(FeatureWrite&)) {
  return {place, place, length, carryOut};
}

// In their order.
constexpr std::array kEffects{
    everywhere(&storeInImage),
    at(fpga::kLowDelay, kAny, &refuseLowDelayInBypass),
    at(fpga::kMappingOption, kAny, &pushFirstByte),
    at(fpga::kLowDelay, kAny, &pushFirstByte),
    range(0, fpga::kSerialTimeout - 1, &writeToFpga),
    range(fpga::kSerialTimeout + 1, fpga::kMirrorEnd - 1, &writeToFpga),
    at(fpga::kPowerOnTime, 1, &setBootScreenTime),
    at(fpga::kCorrection, kAny, &pushCorrection),
    everywhere(&logOffsetMode),
    at(fpga::kScreenOffsetX, kAny, &takeOffsetOfTool),
    at(fpga::kScreenOffsetY, kAny, &takeOffsetOfTool),
    at(fpga::kSignedOffsetX, 8, &takeOffsetOfLsd),
    at(fpga::kOffsetMode, 1, &changeOffsetMode),
    at(fpga::kFiberToNetEnable, kAny, &askForConnectionStep),
    everywhere(&tellSerialTimeout),
    at(fpga::kSerialTimeout, 1, &beatSerialLink),
    range(fpga::kClock, fpga::kClock + 5, &setClock),
    at(fpga::kOutputHeight + 1, 1, &switchFpgaTest),
    at(fpga::kBackupMark, 1, &setRole),
    at(fpga::kScreenWidth, kAny, &clearOutputSize),
    at(fpga::kScreenWidth + 0x100, kAny, &clearOutputSize),
    everywhere(&computeOutputSize),
    at(fpga::kFastCorrection, 1, &setFastCorrection),
    at(fpga::kFiberRedundancy, kAny, &saveByte),
    at(fpga::kBoardOption, kAny, &saveBoardOption),
    everywhere(&saveImage),
    at(fpga::kFlashSync, kAny, &syncFlash),
};

constexpr bool applies(const EffectRow& row, const FeatureWrite& write) {
  return write.at >= row.first && write.at <= row.last &&
         (row.length == kAny || row.length == write.length());
}

constexpr SectionWords kWriting{
    .begin = "================SM2W=======Start <DoWriteFeatureInfo>=========================",
    .finish = "============================ Finish write feature info =========================="};

}  // namespace

void DoWriteFeatureInfo(uint32_t address, std::span<const uint8_t> data) {
  LogSection section(kWriting);
  Data_Global& store = *Data_Global::getInstance();
  const uint32_t place = address - reg::kFeature;
  if (data.empty() || !fits(store.SendParameterReg.size(), place, data.size())) {
    PARLEND_TRACE(kError) << "=== DoWriteFeatureInfo ===" << data.size() << " bytes at " << CTrace::hex
                          << address << " are no feature parameters, return.";
    section.abandon();
    return;
  }
  CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
  loadWhatIsMissing(store);
  FeatureWrite write{store, place, data};
  for (const EffectRow& row : kEffects) {
    if (applies(row, write)) row.carryOut(write);
    if (!write.refused) continue;
    section.abandon();
    return;
  }
}

}  // namespace ORVE_MCUC
