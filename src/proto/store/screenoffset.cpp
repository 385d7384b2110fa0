#include "proto/store/screenoffset.h"

#include "calc/bypass.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "RestoreFPGA";

int32_t signedOffset(const FeatureImage& image, std::size_t at) {
  return static_cast<int32_t>(image.le16(at) | static_cast<uint32_t>(image.le16(at + 2)) << 16);
}

void applySignedOffsets(const FeatureImage& image) {
  PARLEND_TRACE(kInfo) << "###################### LSD Para Back SendParameterReg";
  const int32_t x = signedOffset(image, fpga::kSignedOffsetX);
  const int32_t y = signedOffset(image, fpga::kSignedOffsetY);
  PARLEND_TRACE(kInfo) << "============== LSD Para OffsetXPara:0x" << CTrace::hex << x << " int:" << x;
  PARLEND_TRACE(kInfo) << "============== LSD Para OffsetYPara:0x" << CTrace::hex << y << " int:" << y;
  writeFpgaWord(fpga::kScreenOffsetX, magnitudeOf(x), kCaller);
  writeFpgaWord(fpga::kScreenDirectionX, directionOf(x), kCaller);
  PARLEND_TRACE(kInfo) << "3- @@@@@@@@@@@@@@@@@@@@@@@@@@@ LSD Para to port dist :" << directionOf(x);
  writeFpgaWord(fpga::kScreenOffsetY, magnitudeOf(y), kCaller);
  writeFpgaWord(fpga::kScreenDirectionY, directionOf(y), kCaller);
}

}  // namespace

void applyScreenOffset(RegisterImages& images) {
  const FeatureImage& image = images.SendParameterReg;
  const uint8_t mode = image[fpga::kOffsetMode];
  PARLEND_TRACE(kInfo) << "###################### ModePara Anly SendParameterReg[208]" << mode;
  if (mode == kByLsd) {
    applySignedOffsets(image);
    return;
  }
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Para Anly SendParameterReg";
  if (mode == kNoOffset) return;
  writeFpgaWord(fpga::kScreenDirectionX, 0, kCaller);
  writeFpgaWord(fpga::kScreenDirectionY, 0, kCaller);
  putFeature(images, {}, fpga::kScreenOffsetX, 4, kCaller);
}

}  // namespace ORVE_MCUC
