#include "process/screenpatternload.h"

#include <array>

#include "hextext.h"
#include "logwords.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/paratables.h"

namespace ORVE_MCUC {
namespace {

constexpr SectionWords kWords{
    .begin = "============================= Begin ScreenPatternGenProcess ===============================",
    .finish = "============================= Finish ScreenPatternGenProcess =============================="};
constexpr int kStrobeMs = 1;

void refreshSize(PatternImage reg, std::size_t at, uint32_t fpgaRegister) {
  std::array<uint8_t, 2> size{};
  if (readFpga(fpgaRegister, size, "ScreenPatternGenProcess") == 0)
    std::ranges::copy(size, reg.subspan(at).begin());
}

void refreshScreen(PatternImage reg) {
  refreshSize(reg, pattern::kScreenWidthAt, fpga::kMappedWidth);
  refreshSize(reg, pattern::kScreenHeightAt, fpga::kScreenHeight);
  PARLEND_TRACE(kInfo) << "Fpga Write date:" << reg[2] << " " << reg[3] << " " << reg[4] << " " << reg[5];
  PARLEND_TRACE(kInfo) << "PbufScreenWidth date:" << ParaTable.le16(para::PbufScreenWidth)
                       << " PbufScreenHeight:" << ParaTable.le16(para::PbufScreenHeight);
}

void derivePixels(PatternImage reg) {
  PARLEND_TRACE(kInfo) << "0x01 == gHardwareScreenGenReg[0x20] :Chose---> Pixel interval patterns";
  if (derivePixelPhases(reg)) {
    PARLEND_TRACE(kInfo) << "TempPixelPatternIntervalX " << le16(reg, pattern::kIntervalXAt);
  } else {
    PARLEND_TRACE(kInfo) << "negative offset or out of range, invalid parameter";
  }
}

void deriveBlocks(PatternImage reg) {
  PARLEND_TRACE(kInfo) << "0x02 == gHardwareScreenGenReg[0x20] : ----->Block interval patterns";
  const BlockPhases phases = deriveBlockPhases(reg);
  PARLEND_TRACE(kInfo) << (phases.x.negative ? "negative offset and its absolute value is less than one block"
                                             : "Else ------");
  PARLEND_TRACE(kInfo) << "TempFirstPixelPosY & 0x8000 "
                       << (phases.y.negative
                               ? ": negative offset and its absolute value is less than one block"
                               : "Else ------");
}

void writeRegisters(PatternImage reg, std::size_t from, std::size_t end) {
  writeFpga(fpga::kScreenPatternGen + static_cast<uint32_t>(from), reg.subspan(from, end - from));
}

void strobe(PatternImage reg, uint8_t value) {
  reg[pattern::kStrobeAt] = value;
  writeRegisters(reg, pattern::kStrobeAt, pattern::kStrobeAt + 1);
}

// The FPGA takes the new values at the strobe's edge.
void load(PatternImage reg) {
  writeRegisters(reg, 0, pattern::kStrobeAt);
  writeRegisters(reg, pattern::kStrobeAt + 1, pattern::kLoadedEnd);
  strobe(reg, pattern::kStrobe);
  Delay(kStrobeMs);
  strobe(reg, 0);
}

void logImage(PatternImage reg) {
  if (!tracePasses(kInfo)) return;
  const HexText<4 * pattern::kImageSize> text(reg);
  PARLEND_TRACE(kInfo) << " HardwareScreenGenReg:" << text.view() << "buf[0]" << reg[0];
}

void writePattern(const PenetrateInfo& info) {
  const uint32_t offset = info.Register - reg::kScreenPatternGen;
  PARLEND_TRACE(kInfo) << " WriteOffset:" << offset << " &0xFFF:" << (info.Register & 0xFFF);
  Data_Global& store = *Data_Global::getInstance();
  std::array<uint8_t, ByteImage<512>::size()> image{};
  if (!fits(image.size(), offset, info.data.size())) {
    PARLEND_TRACE(kError) << "=== Sprocess_ScreenPatternGen ===a write of " << info.length << " bytes at "
                          << CTrace::hex << info.Register << " runs past the generator's registers, dropped";
    return;
  }
  // Composed aside: who reads the generator meanwhile puts what the FPGA holds into the image.
  snapshot(store, store.HardwareScreenGenReg, 0, image);
  std::ranges::copy(info.data, image.begin() + offset);
  ScreenPatternGenProcess(std::span(image).first<pattern::kImageSize>());
  refreshBytes(store, store.HardwareScreenGenReg, 0, image);
}

}  // namespace

constinit RelaxedByte ScreenPatternGenState;

void ScreenPatternGenProcess(PatternImage reg) {
  LogSection section(kWords);
  refreshScreen(reg);
  ScreenPatternGenState = reg[pattern::kStateAt];
  if (reg[pattern::kKindAt] == pattern::kPixels) derivePixels(reg);
  if (reg[pattern::kKindAt] == pattern::kBlocks) deriveBlocks(reg);
  logImage(reg);
  load(reg);
}

int Tprocess::Sprocess_ScreenPatternGen(int lenth, char* data) {
  return handlePenetrate<ScreenPatternGenKey>(lenth, data, &writePattern);
}

}  // namespace ORVE_MCUC
