// The output size that follows from a feature write.
#include "calc/bypass.h"
#include "calc/outputsize.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "process/featureeffects.h"

namespace ORVE_MCUC {
namespace {

OutputSizeSource sourceOf(const ByteImage<512>& image) {
  return {.outputWidth = image.le16(fpga::kOutputWidth),
          .outputHeight = image.le16(fpga::kOutputHeight),
          .mappedWidth = image.le16(fpga::kMappedWidth),
          .screenHeight = image.le16(fpga::kScreenHeight),
          .offsetX = image.le16(fpga::kScreenOffsetX),
          .offsetY = image.le16(fpga::kScreenOffsetY),
          .bypass = image[fpga::kOffsetMode] != kNoOffset};
}

// A measure of the screen that was written is the output's as well, where none was set.
void takeMeasure(ByteImage<512>& image, uint32_t at, const OutputSize& size) {
  if (at == fpga::kMappedWidth) image.putLe16(fpga::kOutputWidth, size.width);
  if (at == fpga::kScreenHeight) image.putLe16(fpga::kOutputHeight, size.height);
}

}  // namespace

void clearOutputSize(FeatureWrite& write) {
  constexpr std::array<uint8_t, 4> kCleared{};
  PARLEND_TRACE(kInfo) << "CCCCCCCCCCCCCCCCCCCCCCCC Clear SendParameterReg[0x1EC]  CCCCCCCCCCCCCCCCCCC";
  static_cast<void>(writeThrough(write.store, write.store.SendParameterReg, fpga::kOutputWidth,
                                 fpga::kOutputWidth, kCleared));
}

void computeOutputSize(FeatureWrite& write) {
  if (!changesOutputSize(write.at, static_cast<uint32_t>(write.length()))) {
    PARLEND_TRACE(kInfo)
        << "========addr > 0x1EF || (addr + len ) <0x1EC ....OR.... addr > 0x24 || (addr + len ) "
           "<0x27  not set ScreenSize !!!!";
    return;
  }
  OutputSize size;
  changeFeature(write.store, [&](ByteImage<512>& image) {
    size = outputSizeOf(sourceOf(image));
    if (size.ofScreen) takeMeasure(image, write.at, size);
  });
  PARLEND_TRACE(kInfo) << (size.ofScreen
                               ? "========Set ScreenSize(0x1EC~0x1EF) if fail ,use Real DVI wide&high is "
                               : "========Set ScreenSize(0x1EC~0x1EF) if OK ,use OutCut DVI wide&high is ")
                       << size.width << " x " << size.height;
  write.store.ChangeOutScreenPara(size.width, size.height);
  PARLEND_TRACE(kInfo) << "========Set ScreenSize(DVI Wide&high) to flash ok !!";
  PARLEND_TRACE(kInfo) << "========Set ScreenSize = " << size.width << " x " << size.height;
}

}  // namespace ORVE_MCUC
