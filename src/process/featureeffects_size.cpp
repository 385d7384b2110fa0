// The output size that follows from a feature write.
#include "calc/bypass.h"
#include "calc/outputsize.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "process/featureeffects.h"
#include "proto/store/mappingsteps.h"

namespace ORVE_MCUC {
namespace {

OutputSizeSource sourceOf(const FeatureBytes& image) {
  return {.outputWidth = le16(image, fpga::kOutputWidth),
          .outputHeight = le16(image, fpga::kOutputHeight),
          .mappedWidth = le16(image, fpga::kMappedWidth),
          .screenHeight = le16(image, fpga::kScreenHeight),
          .offsetX = le16(image, fpga::kScreenOffsetX),
          .offsetY = le16(image, fpga::kScreenOffsetY),
          .bypass = image[fpga::kOffsetMode] != kNoOffset};
}

// A measure of the screen that was written is the output's as well, where none was set.
void takeMeasure(FeatureWrite& write, const OutputSize& size) {
  FeatureDraft draft;
  if (write.at == fpga::kMappedWidth) draft.putLe16(fpga::kOutputWidth, size.width);
  if (write.at == fpga::kScreenHeight) draft.putLe16(fpga::kOutputHeight, size.height);
  write.decide(draft);
}

}  // namespace

void clearOutputSize(FeatureWrite& write) {
  PARLEND_TRACE(kInfo) << "CCCCCCCCCCCCCCCCCCCCCCCC Clear SendParameterReg[0x1EC]  CCCCCCCCCCCCCCCCCCC";
  FeatureDraft none;
  putOutputSize(none, 0, 0);
  write.decide(none);
  write.writeBlock(fpga::kOutputWidth);
}

void computeOutputSize(FeatureWrite& write) {
  if (!changesOutputSize(write.at, static_cast<uint32_t>(write.length()))) {
    PARLEND_TRACE(kInfo)
        << "========addr > 0x1EF || (addr + len ) <0x1EC ....OR.... addr > 0x24 || (addr + len ) "
           "<0x27  not set ScreenSize !!!!";
    return;
  }
  const OutputSize size = outputSizeOf(sourceOf(write.image()));
  if (size.ofScreen) takeMeasure(write, size);
  PARLEND_TRACE(kInfo) << (size.ofScreen
                               ? "========Set ScreenSize(0x1EC~0x1EF) if fail ,use Real DVI wide&high is "
                               : "========Set ScreenSize(0x1EC~0x1EF) if OK ,use OutCut DVI wide&high is ")
                       << size.width << " x " << size.height;
  write.store.ChangeOutScreenPara(size.width, size.height);
  PARLEND_TRACE(kInfo) << "========Set ScreenSize(DVI Wide&high) to flash ok !!";
  PARLEND_TRACE(kInfo) << "========Set ScreenSize = " << size.width << " x " << size.height;
}

}  // namespace ORVE_MCUC
