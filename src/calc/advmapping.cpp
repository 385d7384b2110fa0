#include "calc/advmapping.h"

#include <algorithm>

namespace ORVE_MCUC {

AdvancedVerdict checkAdvanced(const AdvancedScreen& screen) {
  AdvancedVerdict verdict;
  for (const AdvancedPort& port : screen) {
    verdict.total += port.cards();
    verdict.portRefused = port.cards() > kMostCardsOfPort || port.mode >= kConnectionModes;
    if (verdict.portRefused) break;
  }
  verdict.valid = !verdict.portRefused && verdict.total <= kMostCards;
  return verdict;
}

PixelExtent screenExtent(const AdvancedScreen& screen, CardSize card) {
  PixelExtent extent;
  for (const AdvancedPort& port : screen) {
    const PixelExtent block = blockOf(port, card);
    extent.width = std::max<uint32_t>(extent.width, static_cast<uint16_t>(port.x + block.width));
    extent.height = std::max<uint32_t>(extent.height, static_cast<uint16_t>(port.y + block.height));
  }
  return extent;
}

PixelExtent largestBlock(const AdvancedScreen& screen, CardSize card) {
  PixelExtent largest;
  for (const AdvancedPort& port : screen) {
    const PixelExtent block = blockOf(port, card);
    largest.width = std::max(largest.width, block.width);
    largest.height = std::max(largest.height, block.height);
  }
  return largest;
}

}  // namespace ORVE_MCUC
