// Saving the parameters to flash.
#include <algorithm>

#include "driverutil.h"
#include "logwords.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kLargestMeasure = 3840;  // pixels, of a sound screen or window
constexpr std::size_t kPowerOnTimeAt = 0x21;
constexpr uint8_t kNoPowerOnTime = 0xFF;
constexpr char kCaller[] = "SaveParaToFlash";

// The lines of one save: that it begins, and that it failed, with the result.
struct SaveWords {
  const char* begin;
  const char* failed;
};
void save(const SaveWords& words, uint32_t address, std::span<const uint8_t> bytes) {
  PARLEND_TRACE(kInfo) << words.begin;
  writeFlash(address, bytes, {nullptr, words.failed});
}

// What could not be loaded is left alone in flash.
bool mayBeSaved(bool loadFailed, const char* what) {
  if (!loadFailed) return true;
  PARLEND_TRACE(kError) << "=== " << kCaller << " ===" << what << " could not be loaded and is not saved.";
  return false;
}

// Saves the first Size bytes of an image, as they are at one moment.
template <std::size_t Size, std::size_t N>
void saveImage(const RegisterImages& images, const ByteImage<N>& image, uint32_t address,
               const SaveWords& words) {
  std::array<uint8_t, Size> bytes{};
  snapshot(images, image, 0, bytes);
  save(words, address, bytes);
}

void saveFeature(const RegisterImages& images, const FeatureDraft& decided) {
  save({"Save feature para to flash :", "=== Save feature para to flash failed! ret = "}, flash::kFeature,
       featureBytes(images, decided));
}

bool isSound(uint16_t measure) {
  return measure <= kLargestMeasure;
}

bool screenIsSound(const FeatureImage& image) {
  if (image[kPowerOnTimeAt] == kNoPowerOnTime) return false;
  for (const std::size_t at : {fpga::kScreenWidth, fpga::kScreenHeight, fpga::kScreenOffsetX,
                               fpga::kScreenOffsetY, fpga::kMappedWidth}) {
    if (!isSound(image.le16(at))) return false;
  }
  return true;
}

bool windowsAreSound(const FeatureImage& image) {
  for (unsigned int port = 0; port < kOutputPorts; ++port) {
    for (const uint32_t field : {0U, fpga::kWindowHeightAt, fpga::kWindowXAt, fpga::kWindowYAt}) {
      if (!isSound(image.le16(fpga::portWindow(port) + field))) return false;
    }
  }
  return true;
}

// Parameters that look wrong are saved like any others: this is a hint for whoever reads the log.
void logSoundness(const FeatureImage& image) {
  if (!tracePasses(kInfo)) return;
  PARLEND_TRACE(kInfo) << (screenIsSound(image) && windowsAreSound(image)
                               ? "Finish parameter verify. the parameter is OK."
                               : "Finish parameter verify, the parameter is invalid! ");
}

bool formatTagDiffers() {
  std::array<uint8_t, Data_Global::IsNewFlashTag.size()> stored{};
  readFlash(flash::kFormatTag, stored);
  return stored != Data_Global::IsNewFlashTag;
}

void saveBasicHardware(Data_Preset& preset) {
  if (preset.loadFailed) Data_Global::getInstance()->ReadHardwareInfo();
  if (!mayBeSaved(preset.loadFailed, "the basic hardware page")) return;
  save({"Save basic hardware para to flash :", "=== Save  basic hardware para to flash failed! ret = "},
       flash::kBasicHardwareCopy, std::span(preset.BasicHardWareReg).first(flash::kBasicHardwareSize));
}

// One write, or one for each table that was loaded.
void savePortTables(const RegisterImages& images) {
  constexpr SaveWords kWords{"Save position para to flash :",
                             "=== Save position para to flash failed! ret = "};
  const auto& states = images.loadStates.portTables;
  if (std::ranges::none_of(states, &LoadState::failed))
    return saveImage<kPortTablesSize>(images, PortsTopoPara, flash::kPositionTables, kWords);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    if (!mayBeSaved(states[port].failed(), "a port table")) continue;
    std::array<uint8_t, kPortTableSize> table{};
    const std::size_t at = portTableAt(port);
    snapshot(images, PortsTopoPara, at, table);
    save(kWords, flash::kPositionTables + static_cast<uint32_t>(at), table);
  }
}

void saveParameters(Data_Global& store, const FeatureDraft& decided) {
  const bool newTag = formatTagDiffers();
  logSoundness(store.SendParameterReg);
  loadWhatIsMissing(store);
  const LoadStates& states = store.loadStates;
  if (mayBeSaved(states.feature.failed(), "the feature image")) saveFeature(store, decided);
  if (mayBeSaved(states.global.failed(), "the parameter table")) {
    saveImage<kGlobalParaSize>(
        store, ParaTable, flash::kGlobalPara,
        {"Save Global para to flash :", "=== Save Global para to flash failed! ret = "});
  }
  if (newTag) writeFlash(flash::kFormatTag, Data_Global::IsNewFlashTag, kCaller);
  savePortTables(store);
  if (mayBeSaved(states.number.failed(), "the number table")) {
    saveImage<VsPartPara.size()>(
        store, VsPartPara, flash::kNumberTable,
        {"Save number para to flash :", "=== Save number para to flash failed! ret = "});
  }
  DriverUtil::getInstance()->runCommand("sync");
}

}  // namespace

void Data_Global::SaveParaToFlash(int type, const FeatureDraft& decided) {
  // Whoever saves later also saves later values.
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Close Bypass, dvi wide:"
                       << SendParameterReg[fpga::kOutputWidth] << " "
                       << SendParameterReg[fpga::kOutputHeight];
  const LogSection section(
      {"======================Save para to flash, the type = ",
       "=========================== Finish save para to flash ==========================="},
      static_cast<unsigned>(type));
  if (type == 0) saveBasicHardware(*Data_Preset::getInstance());
  if (type == 1) saveParameters(*this, decided);
}

}  // namespace ORVE_MCUC
