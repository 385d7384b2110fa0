#include "calc/outputsize.h"

namespace ORVE_MCUC {

bool changesOutputSize(uint32_t at, uint32_t length) {
  const uint64_t end = uint64_t{at} + length;
  return (at < 0x1F0 && end > 0x1EB) || (at < 0x28 && end > 0x23) || (at < 0x2E && end > 0x2B);
}

OutputSize outputSizeOf(const OutputSizeSource& source) {
  if (source.outputWidth == 0 || source.outputHeight == 0)
    return {source.mappedWidth, source.screenHeight, true};
  OutputSize size{source.outputWidth, source.outputHeight, false};
  if (source.bypass && source.offsetX < size.width && source.offsetY < size.height) {
    size.width = static_cast<uint16_t>(size.width - source.offsetX);
    size.height = static_cast<uint16_t>(size.height - source.offsetY);
  }
  return size;
}

}  // namespace ORVE_MCUC
