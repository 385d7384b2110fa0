// The picture settings that a person adjusts on the controller. A read answers with what was set last, which
// is not always at the address where it was written; a write takes effect at once and queues the colour work.
#include <array>

#include "calc/colourrecords.h"
#include "envstore.h"
#include "logwords.h"
#include "maps/cardmap.h"
#include "maps/flashmap.h"
#include "proto/spaces/coloursettings.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "proto/store/paratables.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

// These end on other columns than the lines of other spaces; they are what the logs of devices hold.
constexpr SectionWords kReading{
    .begin = "=========================== Begin Read HCInter Info =============================",
    .finish = "=========================== Finish Read HCInter Info ============================"};
constexpr SectionWords kWriting{
    .begin = "=========================== Begin Write HCInter Info =============================",
    .finish = "=========================== Finish Write HCInter Info ============================"};
constexpr std::string_view kHdrQueued =
    "============================ Finish add HDR10Key or HLGKey message to list===========================";
constexpr SectionWords kQueueHdr10{
    .begin = "============================ Begin add HDR10Key message to list===========================",
    .finish = kHdrQueued};
constexpr SectionWords kQueueHlg{
    .begin = "============================ Begin add HLGKey message to list===========================",
    .finish = kHdrQueued};

constexpr uint32_t kWritable = 512;
constexpr uint32_t kAliasMask = 0xFFF;  // reads find a register in every 4 KiB of the space

Singleton<ColourSettings>& holder() {
  static Singleton<ColourSettings> instance;
  return instance;
}
ColourSettings& settings() {
  return *ColourSettings::getInstance();
}

constexpr uint32_t offsetOf(uint32_t address) {
  return address & reg::kOffsetMask;
}

// Where the flash keeps what two registers of this space read.
uint32_t imageInFlash(uint32_t address) {
  return flash::kHdr + (address - reg::kHCInteraction);
}
uint32_t namesInFlash(uint32_t address) {
  return flash::kDeviceNameFile + (address - reg::kHCInteraction);
}

void readHdrShort(uint32_t, std::span<uint8_t> reply) {
  reply[0] = settings().HDRType;
  putLe16(reply, 1, settings().fScreenPeakLight);
  reply[3] = static_cast<uint8_t>(settings().fambientLight);
}

void readHdrBlock(uint32_t address, std::span<uint8_t> reply) {
  constexpr std::size_t kLowGreyAt = reg::kLowGrey - reg::kHdrType;
  if (readFlash(imageInFlash(address), reply,
                {"ReadFromHCInteraction", "Can not Read Flash When Get the 25 Para From HCInteraction"}) !=
      0) {
    std::ranges::fill(reply, uint8_t{0});
    return;
  }
  readHdrShort(address, reply);
  reply[kLowGreyAt] = settings().pMinLum;
}

void readLowGrey(uint32_t, std::span<uint8_t> reply) {
  reply[0] = settings().pMinLum;
}

void readHlgClass(uint32_t, std::span<uint8_t> reply) {
  reply[0] = settings().HLGCalss;
}

void readPictureQuality(uint32_t, std::span<uint8_t> reply) {
  static_assert(para::PbufSaturation == para::PbufContrast + 2 && para::PbufHue == para::PbufContrast + 4);
  snapshot(*Data_Global::getInstance(), ParaTable, para::PbufContrast, reply.first(6));
}

void readWarmUp(uint32_t address, std::span<uint8_t> reply) {
  std::array<uint8_t, 6> stored{};
  if (readFlash(namesInFlash(address), stored,
                {"ReadFromHCInteraction",
                 "Can not Read Flash When Get the KeepWarmUpModeInfo From HCInteraction"}) != 0) {
    return;
  }
  std::copy_n(stored.begin() + 4, 2, reply.begin());
}

void readCommunicationMode(uint32_t address, std::span<uint8_t> reply) {
  if (readFlash(imageInFlash(address), reply,
                {"ReadFromHCInteraction",
                 "Can not Read Flash When Get the devcom_mode Para From HCInteraction"}) != 0) {
    reply[0] = 0;
  }
}

// Fills the reply, zeros so far, of a read at an offset; anything that is no row reads as zeros.
struct Reading {
  uint32_t mask;
  uint32_t offset;
  uint32_t length;  // 0: any
  void (*fill)(uint32_t address, std::span<uint8_t> reply);
};
constexpr std::array kReadings{
    Reading{kAliasMask, offsetOf(reg::kHdrType), 4, &readHdrShort},
    Reading{kAliasMask, offsetOf(reg::kHdrType), 25, &readHdrBlock},
    Reading{kAliasMask, offsetOf(reg::kLowGrey), 0, &readLowGrey},
    Reading{kAliasMask, offsetOf(reg::kHlgClass), 0, &readHlgClass},
    Reading{reg::kOffsetMask, offsetOf(reg::kPictureQuality), 6, &readPictureQuality},
    Reading{reg::kOffsetMask, offsetOf(reg::kWarmUp), 2, &readWarmUp},
    Reading{reg::kOffsetMask, offsetOf(reg::kCommunicationMode), 1, &readCommunicationMode},
};

int ReadFromHCInteraction(IMD_proto3rd& request) {
  LogSection section(kReading);
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  const uint32_t length = request.proto.m_usValidDataLength;
  auto& reply = request.proto.m_data;
  reply.assign(length, 0);
  for (const auto& row : kReadings) {
    if ((address & row.mask) != row.offset || (row.length != 0 && row.length != length)) continue;
    row.fill(address, reply);
    break;
  }
  return kDone;
}

// Global brightness of the first card, percent.
uint8_t cardBrightness() {
  uint8_t byte = 0;
  const CardPlace first{card::kReceivingCard, 0, 0};
  if (readCard(first, card::kBrightness, {&byte, 1},
               {"WriteToHCInteraction", "the cards' brightness cannot be read, counts as 0. ret = "}) != 0) {
    byte = 0;
  }
  const auto percent = static_cast<uint8_t>(byte * 100 / 255);
  PARLEND_TRACE(kInfo) << "RecBuf = " << byte << " Brightness = " << percent;
  return percent;
}

int queueHdr10(IMD_proto3rd& request) {
  LogSection section(kQueueHdr10);
  const HDRParaData record{settings().HDRType,       0,
                           cardBrightness(),         settings().fScreenPeakLight,
                           settings().fambientLight, settings().pMinLum,
                           settings().pdelta};
  const int result = queueBytes(request, workKey<HDR10Key>, record.bytes());
  if (result != kDone) section.abandon();
  return result;
}

int queueHlg(IMD_proto3rd& request) {
  LogSection section(kQueueHlg);
  const HDRParaData record{.HDRType = settings().HDRType, .HLGCalss = settings().HLGCalss};
  const int result = queueBytes(request, workKey<HLGKey>, record.bytes());
  if (result != kDone) section.abandon();
  return result;
}

int calculateHdr(IMD_proto3rd& request) {
  return settings().HDRType == kHdr10 ? queueHdr10(request) : queueHlg(request);
}

void logHdrType() {
  PARLEND_TRACE(kInfo) << "HDRType " << settings().HDRType;
}

int writeHdrType(IMD_proto3rd& request, std::span<const uint8_t> data) {
  settings().HDRType = data[0];
  logHdrType();
  return calculateHdr(request);
}

int writePeakLight(IMD_proto3rd& request, std::span<const uint8_t> data) {
  logHdrType();
  if (settings().HDRType == kHdr10) settings().fScreenPeakLight = le16(data);
  return calculateHdr(request);
}

int writeAmbientLight(IMD_proto3rd& request, std::span<const uint8_t> data) {
  logHdrType();
  if (settings().HDRType == kHdr10) settings().fambientLight = data[0];
  return calculateHdr(request);
}

int writeLowGrey(IMD_proto3rd& request, std::span<const uint8_t> data) {
  logHdrType();
  if (settings().HDRType == kHdr10) settings().pMinLum = data[0];
  return calculateHdr(request);
}

int writeHlgClass(IMD_proto3rd& request, std::span<const uint8_t> data) {
  logHdrType();
  if (settings().HDRType != kHdr10) settings().HLGCalss = data[0];
  return calculateHdr(request);
}

// Saturation and contrast in a byte each, the hue in two.
int writePictureQuality(IMD_proto3rd& request, std::span<const uint8_t> data) {
  settings().Saturation = data[0];
  settings().Contrast = data[1];
  settings().Hue = le16(data, 2);
  return queuePayload<PictureQualityCalKey>(
      request, CSCParaData{settings().Saturation, settings().Contrast, settings().Hue}.bytes());
}

int writeWarmUp(IMD_proto3rd& request, std::span<const uint8_t> data) {
  return queuePayload<WarmUpKey>(request, data.first(2));
}

int writeCommunicationMode(IMD_proto3rd&, std::span<const uint8_t> data) {
  const char mode[] = {static_cast<char>('0' + std::min<int>(data[0], 2)), '\0'};
  OpenStore store;
  if (!store) PARLEND_TRACE(kError) << "=== WriteToHCInteraction ===Openenv Faild";
  if (sysconf_setenv("devcom_mode", mode) != 0) {
    PARLEND_TRACE(kError) << "=== WriteToHCInteraction ===Setenv devcom_mode Faild";
  }
  return kDone;
}

// What a write at an offset does; at any other offset it does nothing.
struct Writing {
  uint32_t offset;
  uint32_t length;    // 0: any
  std::size_t needs;  // bytes that it takes
  int (*carryOut)(IMD_proto3rd& request, std::span<const uint8_t> data);
};
constexpr std::array kWritings{
    Writing{offsetOf(reg::kCommunicationMode), 0, 1, &writeCommunicationMode},
    Writing{offsetOf(reg::kHdrType), 0, 1, &writeHdrType},
    Writing{offsetOf(reg::kScreenPeakLight), 0, 2, &writePeakLight},
    Writing{offsetOf(reg::kAmbientLight), 0, 1, &writeAmbientLight},
    Writing{offsetOf(reg::kHlgClass), 0, 1, &writeHlgClass},
    Writing{offsetOf(reg::kWarmUp), 2, 2, &writeWarmUp},
    Writing{offsetOf(reg::kLowGrey), 0, 1, &writeLowGrey},
    Writing{offsetOf(reg::kPictureQuality), 4, 4, &writePictureQuality},
};

int refuseShort(IMD_proto3rd& request, std::size_t needs) {
  PARLEND_TRACE(kError) << "=== WriteToHCInteraction ===a write of " << request.proto.m_data.size()
                        << " bytes at " << CTrace::hex << request.proto.m_uiRegisterUnitAddress
                        << " does not have the " << CTrace::decimal << needs
                        << " bytes of its field or length, return.";
  request.proto.m_ucAck = kAckRefused;
  return kRefused;
}

int WriteToHCInteraction(IMD_proto3rd& request) {
  LogSection section(kWriting);
  const uint32_t offset = offsetOf(request.proto.m_uiRegisterUnitAddress);
  const uint32_t length = request.proto.m_usValidDataLength;
  if (offset + length >= kWritable) {
    section.abandon();
    PARLEND_TRACE(kError) << "=== WriteToHCInteraction ===Invalid addr+len, return! address = " << offset
                          << " len = " << length;
    return kBeyondImage;
  }
  const std::span<const uint8_t> data = request.proto.m_data;
  int result = kDone;
  for (const auto& row : kWritings) {
    if (offset != row.offset || (row.length != 0 && row.length != length)) continue;
    const std::size_t needs = std::max<std::size_t>(row.needs, length);
    result = data.size() < needs ? refuseShort(request, needs) : row.carryOut(request, data);
  }
  if (result != kDone) section.abandon();
  return result;
}

}  // namespace

ColourSettings* ColourSettings::getInstance() {
  return holder().get([] { return new ColourSettings; });
}
void ColourSettings::deleteInstance() {
  holder().destroy();
}

const RegisterSpace& spaceAt(At<reg::kHCInteraction>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kHCInteraction>({.read = &ReadFromHCInteraction, .write = &WriteToHCInteraction});
  return kSpace;
}

}  // namespace ORVE_MCUC
