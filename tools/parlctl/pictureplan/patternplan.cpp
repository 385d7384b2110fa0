#include "patternplan.h"

#include <algorithm>

#include "mcucdatablock.h"
#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

namespace pattern = ORVE_MCUC::pattern;
using ORVE_MCUC::le16;
using ORVE_MCUC::putLe16;

constexpr uint32_t kLargestExtent = 65535;
constexpr uint32_t kColumns = 72;
constexpr uint32_t kRows = 20;

[[noreturn]] void refuse(const std::string& why) {
  throw peer::Error(peer::Failure::Usage, why);
}

int16_t coordinate(const std::string& text) {
  const bool negative = text.starts_with('-');
  const auto value = static_cast<int>(number(text.substr(negative ? 1 : 0), INT16_MAX));
  return static_cast<int16_t>(negative ? -value : value);
}

void checkFirst(const PatternPlan& plan) {
  const bool pixels = plan.kind == pattern::kPixels;
  for (const auto& [first, extent] : {std::pair(plan.x, plan.width), std::pair(plan.y, plan.height)}) {
    if (pixels && (first < 0 || first >= extent))
      refuse("the first pixel lies from 0 to below the interval, not at " + std::to_string(first));
    if (!pixels && -int{first} >= int{extent})
      refuse("the first pixel lies less than a block in front of the screen, not at " +
             std::to_string(first));
  }
}

// Pixels that a letter stands for: of a block some, so that a corner shows a few of them.
uint32_t stepOf(uint32_t extent, bool blocks, uint32_t letters) {
  return blocks ? std::max<uint32_t>(1, extent / letters) : 1;
}

}  // namespace

PatternPlan patternPlan(const std::string& kind, const std::string& size, const std::string& first) {
  PatternPlan plan;
  plan.kind = kind == "pixels" ? pattern::kPixels : pattern::kBlocks;
  const auto [width, height] = product(size, kLargestExtent);
  plan.width = static_cast<uint16_t>(width);
  plan.height = static_cast<uint16_t>(height);
  const std::size_t comma = first.find(',');
  if (comma == std::string::npos) refuse('\'' + first + "' is not two numbers with a comma between");
  plan.x = coordinate(first.substr(0, comma));
  plan.y = coordinate(first.substr(comma + 1));
  checkFirst(plan);
  return plan;
}

void putPattern(PatternBytes& image, const PatternPlan& plan) {
  const bool pixels = plan.kind == pattern::kPixels, blocks = plan.kind == pattern::kBlocks;
  image[pattern::kKindAt] = plan.kind;
  image[pattern::kControlAt] = image[pattern::kStateAt] = pixels || blocks ? 1 : 0;
  if (!pixels && !blocks) return;
  const std::span<uint8_t> bytes = image;
  putLe16(bytes, pattern::kFirstXAt, static_cast<uint16_t>(plan.x));
  putLe16(bytes, pattern::kFirstYAt, static_cast<uint16_t>(plan.y));
  putLe16(bytes, pixels ? pattern::kIntervalXAt : pattern::kBlockWidthAt, plan.width);
  putLe16(bytes, pixels ? pattern::kIntervalYAt : pattern::kBlockHeightAt, plan.height);
  ORVE_MCUC::derivePhases(image);
}

std::string patternText(const PatternBytes& image, WallSize wall) {
  const bool blocks = image[pattern::kKindAt] == pattern::kBlocks;
  const uint32_t across = stepOf(le16(image, pattern::kBlockWidthAt), blocks, 8);
  const uint32_t down = stepOf(le16(image, pattern::kBlockHeightAt), blocks, 4);
  std::string text = "upper left corner of " + std::to_string(wall.width) + " x " +
                     std::to_string(wall.height) + " pixels, a letter for " + std::to_string(across) + " x " +
                     std::to_string(down) + "; # is lit";
  for (uint32_t row = 0; row < kRows && row * down < wall.height; ++row) {
    text += '\n';
    for (uint32_t column = 0; column < kColumns && column * across < wall.width; ++column) {
      const bool lit = ORVE_MCUC::patternLights(image, static_cast<uint16_t>(column * across),
                                                static_cast<uint16_t>(row * down));
      text += lit ? '#' : '.';
    }
  }
  return text;
}

}  // namespace parlctl
