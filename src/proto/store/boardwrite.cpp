#include "proto/store/boardwrite.h"

#include "driverutil.h"
#include "mcuctrace.h"

namespace ORVE_MCUC {
namespace {

int reported(int ret, const char* what, uint32_t address, std::size_t length, const char* caller) {
  if (ret != 0) {
    PARLEND_TRACE(kError) << "=== " << caller << " ===" << length << " bytes for " << what << " "
                          << CTrace::hex << address << " were not written. ret = " << ret;
  }
  return ret;
}

}  // namespace

int writeFlash(uint32_t address, std::span<const uint8_t> bytes, const char* caller) {
  const int ret = DriverUtil::getInstance()->WriteDataToFlash(
      address, static_cast<unsigned int>(bytes.size()), bytes.data());
  return reported(ret, "flash", address, bytes.size(), caller);
}

int writeFpga(uint32_t address, std::span<const uint8_t> bytes, const char* caller) {
  const int ret = DriverUtil::getInstance()->WriteFPGABusBlock(address, bytes.data(),
                                                               static_cast<unsigned int>(bytes.size()));
  return reported(ret, "FPGA", address, bytes.size(), caller);
}

}  // namespace ORVE_MCUC
