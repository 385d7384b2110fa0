#include "calc/screenpattern.h"

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

int16_t signedAt(ConstPatternImage image, std::size_t at) {
  return static_cast<int16_t>(le16(image, at));
}

BlockPhase storeBlockPhase(PatternImage image, std::size_t firstAt, std::size_t extentAt, std::size_t countAt,
                           std::size_t phaseAt) {
  const BlockPhase axis = blockPhase(signedAt(image, firstAt), le16(image, extentAt));
  putLe16(image, countAt, axis.count);
  putLe16(image, phaseAt, axis.phase);
  return axis;
}

bool startsInterval(uint16_t pixel, uint16_t phase, uint16_t interval) {
  return interval != 0 && (uint32_t{pixel} + phase) % interval == 0;
}

// Number of the block that a pixel lies in; the first pixel of the pattern begins block 0.
int32_t blockOf(uint16_t pixel, uint16_t phase, uint16_t count, uint16_t extent) {
  return (int32_t{pixel} + phase) / extent - count;
}

}  // namespace

bool derivePixelPhases(PatternImage image) {
  const int firstX = signedAt(image, pattern::kFirstXAt), firstY = signedAt(image, pattern::kFirstYAt);
  const int intervalX = le16(image, pattern::kIntervalXAt), intervalY = le16(image, pattern::kIntervalYAt);
  const bool valid = firstX >= 0 && firstY >= 0 && intervalX > firstX && intervalY > firstY;
  const auto phase = [valid](int interval, int first) {
    return valid ? static_cast<uint16_t>((interval - first) % interval) : uint16_t{0};
  };
  putLe16(image, pattern::kPixelPhaseXAt, phase(intervalX, firstX));
  putLe16(image, pattern::kPixelPhaseYAt, phase(intervalY, firstY));
  return valid;
}

BlockPhases deriveBlockPhases(PatternImage image) {
  using namespace pattern;
  return {storeBlockPhase(image, kFirstXAt, kBlockWidthAt, kBlockCountXAt, kBlockPhaseXAt),
          storeBlockPhase(image, kFirstYAt, kBlockHeightAt, kBlockCountYAt, kBlockPhaseYAt)};
}

void derivePhases(PatternImage image) {
  if (image[pattern::kKindAt] == pattern::kPixels) derivePixelPhases(image);
  if (image[pattern::kKindAt] == pattern::kBlocks) deriveBlockPhases(image);
}

bool patternLights(ConstPatternImage image, uint16_t x, uint16_t y) {
  using namespace pattern;
  if (image[kKindAt] == kPixels) {
    return startsInterval(x, le16(image, kPixelPhaseXAt), le16(image, kIntervalXAt)) &&
           startsInterval(y, le16(image, kPixelPhaseYAt), le16(image, kIntervalYAt));
  }
  const uint16_t width = le16(image, kBlockWidthAt), height = le16(image, kBlockHeightAt);
  if (image[kKindAt] != kBlocks || width == 0 || height == 0) return false;
  const int32_t column = blockOf(x, le16(image, kBlockPhaseXAt), le16(image, kBlockCountXAt), width);
  const int32_t row = blockOf(y, le16(image, kBlockPhaseYAt), le16(image, kBlockCountYAt), height);
  return (column + row) % 2 == 0;
}

}  // namespace ORVE_MCUC
