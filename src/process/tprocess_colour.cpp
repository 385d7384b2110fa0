// What a person adjusts: HDR, picture quality, warm-up.
#include <initializer_list>

#include "calc/colourrecords.h"
#include "maps/flashmap.h"
#include "mcuctrace.h"
#include "process/colour.h"
#include "process/proc_poll.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/paratables.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kStoredRecord = 32;
constexpr int kWarmUpSize = 2;

using ConfigurationGuard = CMutexGuardT<CMutexThreadRecursive>;

Data_Global& store() {
  return *Data_Global::getInstance();
}

struct Setting {
  para::Field field;
  uint16_t value;
};

// What is put into the table must not be lost to a later read of one that could not be loaded. A record and
// what is calculated from it belong together: callers hold the configuration lock over both.
void keep(std::initializer_list<Setting> settings) {
  loadWhatIsMissing(store());
  changeImage(store(), ParaTable, [&](auto& table) {
    for (const Setting& setting : settings) table.putLe16(setting.field, setting.value);
  });
}

HDRParaData hdrRecord(std::span<const uint8_t> payload) {
  return HDRParaData::of(payload.first<HDRParaData::kSize>());
}

// Loads the curve, then keeps the record for the next start.
void applyHdr(uint8_t mode, std::span<const uint8_t> payload) {
  SendCardHDRProcess(store(), mode);
  writeFlash(flash::kHdr, payload.first(std::min(payload.size(), kStoredRecord)),
             {"WriteToHCInteraction", "write to page program failed. driverRet = "});
}

void applyHdr10(std::span<const uint8_t> payload) {
  const HDRParaData hdr = hdrRecord(payload);
  PARLEND_TRACE(kInfo) << "Process key: " << workKey<HDR10Key>.name
                       << " fScreenPeakLight: " << hdr.fScreenPeakLight
                       << " fambientLight: " << hdr.fambientLight << " brightness: " << hdr.brightness
                       << " pMinLum: " << hdr.pMinLum;
  const ConfigurationGuard guard(store().m_mutex);
  keep({{para::PbufHDRType, hdr.HDRType},
        {para::PbufScrPeakLight, hdr.fScreenPeakLight},
        {para::PbufAmbientLight, hdr.fambientLight},
        {para::PbufBrightness, hdr.brightness},
        {para::PbufLowGrayEffect, hdr.pMinLum},
        {para::PbufHigGrayEffect, hdr.pdelta}});
  applyHdr(hdr.HDRType, payload);
}

void applyHlg(std::span<const uint8_t> payload) {
  const HDRParaData hdr = hdrRecord(payload);
  PARLEND_TRACE(kInfo) << "Process key: " << workKey<HLGKey>.name << " HLGClass: " << hdr.HLGCalss;
  const ConfigurationGuard guard(store().m_mutex);
  keep({{para::PbufHDRType, hdr.HDRType}, {para::PbufHLGClass, hdr.HLGCalss}});
  applyHdr(hdr.HDRType, payload);
}

void applyPictureQuality(std::span<const uint8_t> payload) {
  const CSCParaData csc = CSCParaData::of(payload.first<CSCParaData::kSize>());
  PARLEND_TRACE(kInfo) << "Process key: " << workKey<PictureQualityCalKey>.name
                       << " Contrast: " << csc.Contrast << " Saturation: " << csc.Saturation
                       << " Hue: " << csc.Hue;
  const ConfigurationGuard guard(store().m_mutex);
  keep(
      {{para::PbufSaturation, csc.Saturation}, {para::PbufContrast, csc.Contrast}, {para::PbufHue, csc.Hue}});
  PictureQualityProcess(0);
}

void keepWarmUp(std::span<const uint8_t> payload) {
  const uint8_t mode = payload[0];
  const uint8_t time = payload[1];
  PARLEND_TRACE(kInfo) << "Process key: " << workKey<WarmUpKey>.name << " WarmUpMode: " << mode
                       << " WarmUpTime: " << time;
  Proc_Poll::getInstance()->ChangeParaForKeepWarmUpMode = mode;
  Proc_Poll::getInstance()->ParaForKeepWarmUpModeTimeData = time;
  constexpr auto& kTag = Data_Global::IsNewFlashTag;
  const std::array stored{mode, time, kTag[0], kTag[1], kTag[2], kTag[3]};
  writeFlash(flash::kWarmUp, stored, {"WriteToBackupInfo", "Write DisplayWarmUp to flash failed. ret = "});
}

}  // namespace

int Tprocess::Sprocess_HDR10(int lenth, char* data) {
  return handleRecord<HDR10Key>(lenth, data, HDRParaData::kSize, &applyHdr10);
}

int Tprocess::Sprocess_HLG(int lenth, char* data) {
  return handleRecord<HLGKey>(lenth, data, HDRParaData::kSize, &applyHlg);
}

int Tprocess::Sprocess_PictureQualityCal(int lenth, char* data) {
  return handleRecord<PictureQualityCalKey>(lenth, data, CSCParaData::kSize, &applyPictureQuality);
}

int Tprocess::Sprocess_DisplayWarmUp(int lenth, char* data) {
  return handleRecord<WarmUpKey>(lenth, data, kWarmUpSize, &keepWarmUp);
}

}  // namespace ORVE_MCUC
