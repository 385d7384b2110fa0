#include "process/colour.h"

#include <array>

#include "calc/gammacurve.h"
#include "hextext.h"
#include "logwords.h"
#include "maps/fpgamap.h"
#include "maps/gammamap.h"
#include "mcuctrace.h"
#include "platform/colour.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/paratables.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

static_assert(kGammaTableBytes == COLOUR_TABLE_SIZE && kGammaTableBytes == flash::kGammaTableSize);
using Table = std::array<uint8_t, kGammaTableBytes>;
constexpr Table GammaTable_x = gammacurve::defaultTable();

constexpr SectionWords kHdr10Words{
    .begin = "============================= Begin HDR10 Calculate ===============================",
    .finish = "============================= Finish HDR10  Calculate =============================="};
constexpr SectionWords kHlgWords{
    .begin = "============================= Begin HLG Calculate ===============================",
    .finish = "============================= Finish HLG Calculate =============================="};
// Finishes with the words of another section; so do the devices in the field.
constexpr SectionWords kCscWords{
    .begin = "============================= Begin CSC Calculate ===============================",
    .finish = "============================= Finish HDR10 or HLG Calculate =============================="};

constexpr uint8_t kHdr10Mode = 'X';
constexpr uint8_t kHlgMode = 'x';
constexpr int kBitDepth = 10;
constexpr uint8_t kHdrMark = 0x5A;  // in the place of the bit depth
constexpr uint8_t kHdrOn = 0x58;
constexpr uint8_t kHdrOff = 0xFF;
constexpr std::size_t kGammaBlock = 0x400;

// Conversions of the colour library.
constexpr int FRtoFR = 0;  // full-range RGB to full-range RGB
constexpr int LYtoFR = 4;  // limited-range YUV to full-range RGB

uint16_t setting(para::Field field) {
  return ParaTable.le16(field);
}
uint8_t lowByte(para::Field field) {
  return static_cast<uint8_t>(setting(field));
}

void loadGamma(uint32_t fpgaTable, std::span<const uint8_t> table) {
  for (std::size_t at = 0; at < table.size(); at += kGammaBlock)
    writeFpga(fpgaTable + static_cast<uint32_t>(at), table.subspan(at, kGammaBlock));
}

bool hasValidTag(const GammaTable& table) {
  std::array<uint8_t, Data_Global::IsNewFlashTag.size()> tag{};
  return readFlash(table.tag, tag) == 0 && tag == Data_Global::IsNewFlashTag;
}

void loadStored(const GammaTable& table) {
  Table stored{};
  if (readFlash(table.flash, stored, "SendGammaToFpga") != 0) stored.fill(0);
  loadGamma(table.fpga, stored);
}

Table calculateHdr10() {
  LogSection section(kHdr10Words);
  Table table{};
  HDR10GammaCalculation(setting(para::PbufScrPeakLight), setting(para::PbufAmbientLight),
                        lowByte(para::PbufBrightness), kBitDepth, lowByte(para::PbufLowGrayEffect),
                        lowByte(para::PbufHigGrayEffect), table.data());
  return table;
}

Table calculateHlg() {
  LogSection section(kHlgWords);
  Table table{};
  HLGGammaCalculation(lowByte(para::PbufHLGClass), table.data());
  return table;
}

void loadCurve(RegisterImages& images, const Table& curve) {
  for (uint32_t colour = 0; colour < 3; ++colour)
    writeFpga(fpga::kGammaTables + colour * fpga::kGammaTableStride, curve);
  writePast(images, VsPartPara, kBitDepthMarkAt, fpga::kBitDepthMark, {&kHdrMark, 1});
  writeThrough(images, images.SendParameterReg, fpga::kHdrEnable, fpga::kHdrEnable, {&kHdrOn, 1});
  PARLEND_TRACE(kInfo) << "Finish HDR RGBGAMMA Sendto FPGA";
}

// The images are told only that HDR is on, as the devices in the field do it: what else these two registers
// hold, the next read brings.
void loadSdr(RegisterImages& images) {
  const uint8_t bitDepth = lowByte(para::PbufSendcardBitDepth);
  SendGammaToFpga(bitDepth);
  writePast(images, VsPartPara, kBitDepthMarkAt, fpga::kBitDepthMark, {&bitDepth, 1});
  writePast(images, images.SendParameterReg, fpga::kHdrEnable, fpga::kHdrEnable, {&kHdrOff, 1});
  PARLEND_TRACE(kInfo) << "Finish Deft RGBGAMMA Sendto FPGA,the SendcardBitDepth is  " << bitDepth;
}

struct Conversion {
  int mode;
  uint32_t fpga;
  const char* words;
};
constexpr std::array kConversions{
    Conversion{FRtoFR, fpga::kConversion, " Full RGB to Full RGB CscPara:"},
    Conversion{LYtoFR, fpga::kLimitedConversion, " Limit YUV to Full RGB CscPara:"},
};

void convert(const Conversion& conversion, int arg) {
  std::array<uint8_t, COLOUR_COEFFICIENTS_SIZE> coefficients{};
  PictureQualityCalculation(conversion.mode, setting(para::PbufSaturation), setting(para::PbufContrast),
                            setting(para::PbufHue), arg, coefficients.data());
  writeFpga(conversion.fpga, coefficients);
  if (!tracePasses(kInfo)) return;
  const HexText<4 * COLOUR_COEFFICIENTS_SIZE> text(coefficients);
  PARLEND_TRACE(kInfo) << conversion.words << text.view();
}

}  // namespace

void SendGammaToFpga(uint8_t bank) {
  const std::span tables = std::span(kGammaMap).subspan(bank == kBank12Bit ? 0 : 3, 3);
  for (const auto& table : tables) {
    const bool valid = hasValidTag(table);
    if (setting(para::PbufHDRType) != 0) continue;
    if (valid) {
      loadStored(table);
    } else {
      loadGamma(table.fpga, GammaTable_x);
    }
  }
}

void SendCardHDRProcess(RegisterImages& images, uint8_t mode) {
  switch (mode) {
    case kHdr10Mode:
      return loadCurve(images, calculateHdr10());
    case kHlgMode:
      return loadCurve(images, calculateHlg());
    default:
      return loadSdr(images);
  }
}

void PictureQualityProcess(int arg) {
  LogSection section(kCscWords);
  for (const auto& conversion : kConversions) convert(conversion, arg);
}

}  // namespace ORVE_MCUC
