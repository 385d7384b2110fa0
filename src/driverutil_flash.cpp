#include "driverretry.h"
#include "driverutil.h"
#include "mcuctrace.h"
#include "platform/driver.h"

namespace ORVE_MCUC {
namespace {

// Logs a flash operation and carries it out with retries.
template <class Call>
int flashOperation(const char* name, unsigned int address, unsigned int length, Call call) {
  PARLEND_TRACE(kInfo) << name << ": start address = " << CTrace::hex << address << " length = " << length;
  return withRetries(call);
}

}  // namespace

int DriverUtil::ReadBytesFromFlash(unsigned int address, unsigned int length, unsigned char* buffer) {
  return flashOperation("ReadBytesFromFlash", address, length,
                        [&] { return ReadDataFromFlashx(address, length, buffer); });
}

int DriverUtil::ReadBytesFromFlash(unsigned char, unsigned int address, unsigned int length,
                                   unsigned char* buffer) {
  return ReadBytesFromFlash(address, length, buffer);
}

int DriverUtil::WriteDataToFlash(unsigned int address, unsigned int length, const unsigned char* data) {
  return flashOperation("WriteDataToFlash", address, length,
                        [&] { return WriteDataToFlashx(address, length, data); });
}

int DriverUtil::WriteDataToFlash(unsigned char, unsigned int address, unsigned int length,
                                 const unsigned char* data) {
  return WriteDataToFlash(address, length, data);
}

int DriverUtil::PageProgram(unsigned char, unsigned int address, unsigned short length,
                            const unsigned char* data) {
  return WriteDataToFlash(address, length, data);
}

int DriverUtil::WriteDataToFactoryTmpFlash(unsigned int address, unsigned int length,
                                           const unsigned char* data) {
  return flashOperation("WriteDataToFactoryTmpFlash", address, length,
                        [&] { return WriteDataToFactoryTmpFlashx(address, length, data); });
}

}  // namespace ORVE_MCUC
