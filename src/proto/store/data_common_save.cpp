// Saving the parameters to flash.
#include "driverutil.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kBasicHardwareSize = 256;
constexpr std::size_t kGlobalParaSize = 512;
constexpr uint16_t kLargestMeasure = 3840;  // pixels, of a sound screen or window
constexpr std::size_t kPowerOnTimeAt = 0x21;
constexpr uint8_t kNoPowerOnTime = 0xFF;

struct SaveWords {
  const char* begin;
  const char* failed;
};

void save(const SaveWords& words, uint32_t address, std::span<const uint8_t> bytes) {
  PARLEND_TRACE(kInfo) << words.begin;
  const int ret = writeFlash(address, bytes);
  if (ret != 0) PARLEND_TRACE(kInfo) << words.failed << ret;
}

// Saves the first Size bytes of an image.
template <std::size_t Size, std::size_t N>
void saveImage(const SaveWords& words, uint32_t address, const ByteImage<N>& image) {
  save(words, address, image.template part<0, Size>());
}

bool isSound(uint16_t measure) {
  return measure <= kLargestMeasure;
}

bool screenIsSound(const ByteImage<512>& image) {
  if (image[kPowerOnTimeAt] == kNoPowerOnTime) return false;
  for (const std::size_t at : {fpga::kScreenWidth, fpga::kScreenHeight, fpga::kScreenOffsetX,
                               fpga::kScreenOffsetY, fpga::kMappedWidth}) {
    if (!isSound(image.le16(at))) return false;
  }
  return true;
}

bool windowsAreSound(const ByteImage<512>& image) {
  for (unsigned int port = 0; port < kOutputPorts; ++port) {
    for (const uint32_t field : {0U, fpga::kWindowHeightAt, fpga::kWindowXAt, fpga::kWindowYAt}) {
      if (!isSound(image.le16(fpga::portWindow(port) + field))) return false;
    }
  }
  return true;
}

// Parameters that look wrong are saved like any others: this is a hint for whoever reads the log.
void logSoundness(const ByteImage<512>& image) {
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

void saveBasicHardware() {
  save({"Save basic hardware para to flash :", "=== Save  basic hardware para to flash failed! ret = "},
       flash::kBasicHardwareCopy,
       std::span(Data_Preset::getInstance()->BasicHardWareReg).first(kBasicHardwareSize));
}

void saveParameters(const Data_Global& store) {
  const bool newTag = formatTagDiffers();
  logSoundness(store.SendParameterReg);
  saveImage<512>({"Save feature para to flash :", "=== Save feature para to flash failed! ret = "},
                 flash::kFeature, store.SendParameterReg);
  saveImage<kGlobalParaSize>({"Save Global para to flash :", "=== Save Global para to flash failed! ret = "},
                             flash::kGlobalPara, ParaTable);
  if (newTag) writeFlash(flash::kFormatTag, Data_Global::IsNewFlashTag, "SaveParaToFlash");
  saveImage<kPortTablesSize>(
      {"Save position para to flash :", "=== Save position para to flash failed! ret = "},
      flash::kPositionTables, PortsTopoPara);
  saveImage<VsPartPara.size()>(
      {"Save number para to flash :", "=== Save number para to flash failed! ret = "}, flash::kNumberTable,
      VsPartPara);
  DriverUtil::getInstance()->runCommand("sync");
}

}  // namespace

void Data_Global::SaveParaToFlash(int type) {
  // Whoever saves later also saves later values.
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Close Bypass, dvi wide:"
                       << SendParameterReg[fpga::kOutputWidth] << " "
                       << SendParameterReg[fpga::kOutputHeight];
  PARLEND_TRACE(kInfo) << "======================Save para to flash, the type = " << type;
  if (type == 0) saveBasicHardware();
  if (type == 1) saveParameters(*this);
  PARLEND_TRACE(kInfo) << "=========================== Finish save para to flash ===========================";
}

}  // namespace ORVE_MCUC
