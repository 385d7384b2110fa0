// Offset modes: the picture's offset as a configuration tool or LSD sets it, and how the modes are left.
#include "calc/bypass.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "process/featureeffects.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/mappingsteps.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "DoWriteFeatureInfo";

void clearDirections() {
  writeFpgaWord(fpga::kScreenDirectionX, 0, kCaller);
  writeFpgaWord(fpga::kScreenDirectionY, 0, kCaller);
}

void putSigned(FeatureDraft& draft, uint32_t first, uint32_t value) {
  draft.putLe16(first, static_cast<uint16_t>(value));
  draft.putLe16(first + 2, static_cast<uint16_t>(value >> 16));
}

void decideMode(FeatureWrite& write, OffsetMode mode) {
  FeatureDraft draft;
  draft.put(fpga::kOffsetMode, mode);
  write.decide(draft);
}

// An offset into the screen information, whose byte 0 says what it goes with.
void keepOffset(Data_Global& store, std::size_t at, std::span<const uint8_t> offset) {
  changeImage(store, store.ScreenParaReg, [&](auto& image) {
    image[0] = image[1] == screenpara::kConfigured ? 1 : 3;
    for (const uint8_t byte : offset) image[at++] = byte;
  });
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
  const uint16_t screen = le16(write.image(), axis.screen);
  FeatureDraft draft;
  draft.putLe16(axis.offset, magnitude);
  draft.putLe16(axis.output, withOffset(screen, magnitude));
  write.decide(draft);
  store.DebugForScreenZero(axis.debugPoint, write.address(), axis.changed);
  PARLEND_TRACE(kInfo) << axis.magnitude << magnitude << axis.outputName << withOffset(screen, magnitude)
                       << axis.screenName << screen;
  std::array<uint8_t, 2> offset{};
  putLe16(offset, 0, magnitude);
  keepOffset(store, axis.screenParaAt, offset);
}

void applySigned(FeatureWrite& write, const Axis& axis, int32_t offset) {
  writeFpgaWord(axis.offset, magnitudeOf(offset), kCaller);
  if (offset <= 0) enlargeOutput(write, axis, magnitudeOf(offset));
  PARLEND_TRACE(kInfo) << "3- @@@@@@@@@@@@@@@@@@@@@@@@@@@ LSD Para to port dist :" << directionOf(offset);
  writeFpgaWord(axis.direction, directionOf(offset), kCaller);
}

// The output of an image without its offset.
void shrinkOutput(FeatureWrite& write, const FeatureBytes& image) {
  const uint16_t width = le16(image, fpga::kOutputWidth);
  const uint16_t height = le16(image, fpga::kOutputHeight);
  const uint16_t x = le16(image, fpga::kScreenOffsetX);
  const uint16_t y = le16(image, fpga::kScreenOffsetY);
  FeatureDraft draft;
  putOutputSize(draft, withoutOffset(width, x), withoutOffset(height, y));
  write.decide(draft);
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Close Bypass, dvi wide:" << width
                       << " heigh:" << height << " tmp_x:" << x << " tmp_y:" << y;
}

void forgetOffsets(FeatureWrite& write) {
  constexpr std::array<uint8_t, 4> kNone{};
  FeatureDraft draft;
  draft.put(fpga::kScreenOffsetX, kNone);
  draft.put(fpga::kSignedOffsetX, std::array<uint8_t, 8>{});
  write.decide(draft);
  keepOffset(write.store, kX.screenParaAt, kNone);
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

void writeOffsetOf(const FeatureBytes& image, const ModeChange& change) {
  constexpr std::array<uint8_t, 4> kNone{};
  const bool keeps = change.mode != kNoOffset;
  writeFpga(kX.offset, keeps ? std::span(image).subspan<kX.offset, 4>() : std::span<const uint8_t, 4>(kNone),
            kCaller);
}

// What it starts from is taken once: a peer may read the FPGA's new offset back into the image.
void change(FeatureWrite& write, const ModeChange& change) {
  PARLEND_TRACE(kInfo) << change.begins;
  const auto image = write.image();
  decideMode(write, change.mode);
  clearDirections();
  writeOffsetOf(image, change);
  shrinkOutput(write, image);
  write.store.DebugForScreenZero(change.debugPoint, write.address(), change.changed);
  forgetOffsets(write);
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
  decideMode(write, kByTool);
  clearDirections();
  const auto image = write.image();
  FeatureDraft draft;
  putSigned(draft, fpga::kSignedOffsetX, negated(le16(image, kX.offset)));
  putSigned(draft, fpga::kSignedOffsetY, negated(le16(image, kY.offset)));
  write.decide(draft);
}

void takeOffsetOfLsd(FeatureWrite& write) {
  if (!isBypass(write)) return;
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ LSD Para Anly SendParameterReg";
  decideMode(write, kByLsd);
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
