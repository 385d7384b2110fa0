// Offset modes: the picture's offset as a configuration tool or LSD sets it, and how the modes are left.
#include "calc/bypass.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "process/featureeffects.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "DoWriteFeatureInfo";

void clearDirections() {
  writeFpgaWord(fpga::kScreenDirectionX, 0, kCaller);
  writeFpgaWord(fpga::kScreenDirectionY, 0, kCaller);
}

void putSigned(ByteImage<512>& image, uint32_t first, uint32_t value) {
  image.putLe16(first, static_cast<uint16_t>(value));
  image.putLe16(first + 2, static_cast<uint16_t>(value >> 16));
}

// Byte 0 of the screen information: what the offset goes with.
void markOffset(Data_Global& store) {
  constexpr uint8_t kConfigured = 0x55;
  store.ScreenParaReg[0] = store.ScreenParaReg[1] == kConfigured ? 1 : 3;
}

// One axis, with the texts of its log lines.
struct Axis {
  uint32_t offset;  // feature registers
  uint32_t direction;
  uint32_t screen;
  uint32_t output;
  std::size_t screenParaAt;
  int debugPoint;
  const char* changed;
  const char* received;
  const char* magnitude;
  const char* outputName;
  const char* screenName;
};
constexpr Axis kX{fpga::kScreenOffsetX,
                  fpga::kScreenDirectionX,
                  fpga::kScreenWidth,
                  fpga::kOutputWidth,
                  2,
                  1,
                  "Bypass mode tmp_x changed!!",
                  "============== LSD Para OffsetXPara:0x",
                  " ----------------------  tmp_x :",
                  " realDviWide",
                  " DviWide:"};
constexpr Axis kY{fpga::kScreenOffsetY,
                  fpga::kScreenDirectionY,
                  fpga::kScreenHeight,
                  fpga::kOutputHeight,
                  4,
                  2,
                  "Bypass mode tmp_y changed!!",
                  "============== LSD Para OffsetYPara:0x",
                  " ----------------------  tmp_y :",
                  " realDviHeigh",
                  " DVI_Height:"};

void logReceived(const Axis& axis, int32_t offset) {
  PARLEND_TRACE(kInfo) << axis.received << CTrace::hex << offset << " int:" << offset;
}

// An offset to the left or up enlarges the output.
void enlargeOutput(FeatureWrite& write, const Axis& axis, uint16_t magnitude) {
  Data_Global& store = write.store;
  uint16_t screen = 0;
  changeFeature(store, [&](ByteImage<512>& image) {
    screen = image.le16(axis.screen);
    image.putLe16(axis.offset, magnitude);
    image.putLe16(axis.output, withOffset(screen, magnitude));
  });
  store.DebugForScreenZero(axis.debugPoint, write.address(), axis.changed);
  PARLEND_TRACE(kInfo) << axis.magnitude << magnitude << axis.outputName << withOffset(screen, magnitude)
                       << axis.screenName << screen;
  markOffset(store);
  store.ScreenParaReg.putLe16(axis.screenParaAt, magnitude);
}

void applySigned(FeatureWrite& write, const Axis& axis, int32_t offset) {
  writeFpgaWord(axis.offset, magnitudeOf(offset), kCaller);
  if (offset <= 0) enlargeOutput(write, axis, magnitudeOf(offset));
  PARLEND_TRACE(kInfo) << "3- @@@@@@@@@@@@@@@@@@@@@@@@@@@ LSD Para to port dist :" << directionOf(offset);
  writeFpgaWord(axis.direction, directionOf(offset), kCaller);
}

// The output without its offset.
void shrinkOutput(FeatureWrite& write) {
  uint16_t width = 0;
  uint16_t height = 0;
  uint16_t x = 0;
  uint16_t y = 0;
  changeFeature(write.store, [&](ByteImage<512>& image) {
    width = image.le16(fpga::kOutputWidth);
    height = image.le16(fpga::kOutputHeight);
    x = image.le16(fpga::kScreenOffsetX);
    y = image.le16(fpga::kScreenOffsetY);
    image.putLe16(fpga::kOutputWidth, withoutOffset(width, x));
    image.putLe16(fpga::kOutputHeight, withoutOffset(height, y));
  });
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Close Bypass, dvi wide:" << width
                       << " heigh:" << height << " tmp_x:" << x << " tmp_y:" << y;
}

void forgetOffsets(Data_Global& store) {
  FeatureDraft draft;
  for (uint32_t i = 0; i < 4; ++i) draft.put(fpga::kScreenOffsetX + i, 0);
  for (uint32_t i = 0; i < 8; ++i) draft.put(fpga::kSignedOffsetX + i, 0);
  putFeature(store, draft);
  markOffset(store);
  store.ScreenParaReg.put<2, 4>(std::array<uint8_t, 4>{});
}

struct ModeChange {
  OffsetMode mode;
  const char* begins;
  int debugPoint;
  const char* changed;
};
constexpr ModeChange kToBypass{kByTool, "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Para Anly SendParameterReg",
                               3, "Bypass mode change to mode bypass!!"};
constexpr ModeChange kToNormal{
    kNoOffset, "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Close Bypass Para Anly SendParameterReg", 4,
    "Bypass mode change to mode Normal!!"};

void writeOffsetOf(const Data_Global& store, const ModeChange& change) {
  std::array<uint8_t, 4> offset{};
  if (change.mode != kNoOffset) static_cast<void>(snapshot(store, store.SendParameterReg, kX.offset, offset));
  writeFpga(kX.offset, offset, kCaller);
}

void change(FeatureWrite& write, const ModeChange& change) {
  Data_Global& store = write.store;
  PARLEND_TRACE(kInfo) << change.begins;
  store.SendParameterReg[fpga::kOffsetMode] = change.mode;
  clearDirections();
  writeOffsetOf(store, change);
  shrinkOutput(write);
  store.DebugForScreenZero(change.debugPoint, write.address(), change.changed);
  forgetOffsets(store);
  write.sizeFollows = true;
}

bool isBypass(const FeatureWrite& write) {
  return write.store.SendParameterReg[fpga::kOffsetMode] != kNoOffset;
}

}  // namespace

void logOffsetMode(FeatureWrite& write) {
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@ SendParameterReg[0x1F8]"
                       << write.store.SendParameterReg[fpga::kOffsetMode];
}

void takeOffsetOfTool(FeatureWrite& write) {
  if (!isBypass(write)) return;
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ TOLM Para Anly SendParameterReg";
  write.store.SendParameterReg[fpga::kOffsetMode] = kByTool;
  clearDirections();
  changeFeature(write.store, [](ByteImage<512>& image) {
    putSigned(image, fpga::kSignedOffsetX, negated(image.le16(kX.offset)));
    putSigned(image, fpga::kSignedOffsetY, negated(image.le16(kY.offset)));
  });
}

void takeOffsetOfLsd(FeatureWrite& write) {
  if (!isBypass(write)) return;
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ LSD Para Anly SendParameterReg";
  write.store.SendParameterReg[fpga::kOffsetMode] = kByLsd;
  const auto x = static_cast<int32_t>(le32(write.data, 0));
  const auto y = static_cast<int32_t>(le32(write.data, 4));
  logReceived(kX, x);
  logReceived(kY, y);
  applySigned(write, kX, x);
  applySigned(write, kY, y);
}

void changeOffsetMode(FeatureWrite& write) {
  if (write.value() == kOpenBypass) change(write, kToBypass);
  if (write.value() == kNoOffset) change(write, kToNormal);
}

}  // namespace ORVE_MCUC
