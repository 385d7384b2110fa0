#include "proto/screenoffset.h"

#include <array>
#include <span>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/fpgamap.h"

namespace ORVE_MCUC {
namespace {

constexpr uint8_t kSignedOffsets = 2;  // offset modes
constexpr uint8_t kNoOffsets = 0;
constexpr uint16_t kForward = 0xFFFF;

void writeOffset(uint32_t address, std::span<const uint8_t> bytes) {
  const int ret = DriverUtil::getInstance()->FPGAC5_WriteDataBlock(
      0, 0, address, static_cast<unsigned int>(bytes.size()), bytes.data());
  if (ret != 0)
    PARLEND_TRACE(kError) << "=== RestoreFPGA ===the screen offset was not written. ret = " << ret;
}

void writeWord(uint32_t address, uint16_t value) {
  std::array<uint8_t, 2> bytes{};
  putLe16(bytes, 0, value);
  writeOffset(address, bytes);
}

int32_t signedOffset(const ByteImage<512>& image, std::size_t at) {
  return static_cast<int32_t>(image.le16(at) | static_cast<uint32_t>(image.le16(at + 2)) << 16);
}

// An offset as the FPGA takes it: its magnitude, and which way it goes.
void writeSignedOffset(int32_t offset, uint32_t magnitudeAt, uint32_t directionAt) {
  const auto bits = static_cast<uint32_t>(offset);
  const uint16_t direction = offset > 0 ? kForward : uint16_t{0};
  writeWord(magnitudeAt, static_cast<uint16_t>(offset < 0 ? 0U - bits : bits));
  writeWord(directionAt, direction);
  PARLEND_TRACE(kInfo) << "3- @@@@@@@@@@@@@@@@@@@@@@@@@@@ LSD Para to port dist :" << direction;
}

void applySignedOffsets(const ByteImage<512>& image) {
  PARLEND_TRACE(kInfo) << "###################### LSD Para Back SendParameterReg";
  const int32_t x = signedOffset(image, fpga::kSignedOffsetX);
  const int32_t y = signedOffset(image, fpga::kSignedOffsetY);
  PARLEND_TRACE(kInfo) << "============== LSD Para OffsetXPara:0x" << CTrace::hex << x << " int:" << x;
  PARLEND_TRACE(kInfo) << "============== LSD Para OffsetYPara:0x" << CTrace::hex << y << " int:" << y;
  writeSignedOffset(x, fpga::kScreenOffsetX, fpga::kScreenDirectionX);
  writeSignedOffset(y, fpga::kScreenOffsetY, fpga::kScreenDirectionY);
}

}  // namespace

void applyScreenOffset(const ByteImage<512>& image) {
  const uint8_t mode = image[fpga::kOffsetMode];
  PARLEND_TRACE(kInfo) << "###################### ModePara Anly SendParameterReg[208]" << mode;
  if (mode == kSignedOffsets) {
    applySignedOffsets(image);
    return;
  }
  PARLEND_TRACE(kInfo) << "@@@@@@@@@@@@@@@@@@@@@@@@@@@ ModeChange Para Anly SendParameterReg";
  if (mode == kNoOffsets) return;
  writeWord(fpga::kScreenDirectionX, 0);
  writeWord(fpga::kScreenDirectionY, 0);
  std::array<uint8_t, 4> offsets{};
  if (image.copyTo(offsets, fpga::kScreenOffsetX)) writeOffset(fpga::kScreenOffsetX, offsets);
}

}  // namespace ORVE_MCUC
