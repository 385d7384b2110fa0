// Direct access to the FPGA bus, for tests and service.
#include "maps/fpgamap.h"
#include "proto/spaces/spaces.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kFpgaMask = 0x0FFFFFFF;
constexpr uint16_t kReadLimit = 4096;      // a read of as much is refused
constexpr std::size_t kWriteLimit = 4096;  // a write of more is refused
constexpr uint16_t kTestPatternLength = 25;

int ReadTestPrintfInfomation(IMD_proto3rd& request) {
  const uint32_t fpgaRegister = request.proto.m_uiRegisterUnitAddress & kFpgaMask;
  const uint16_t length = request.proto.m_usValidDataLength;
  if (length >= kReadLimit) {
    PARLEND_TRACE(kError) << "=== ReadTestPrintfInfomation ===length " << length << " is too long, return.";
    request.proto.m_ucAck = kAckRefused;
    return kRefused;
  }
  PARLEND_TRACE(kInfo) << "=== Read FPGA test Reg :  " << CTrace::hex << fpgaRegister << " len :" << length;
  auto& data = request.proto.m_data;
  data.assign(length, 0);
  if (const int ret = readFpga(fpgaRegister, data)) {
    PARLEND_TRACE(kError) << "=== Read FPGA test Reg failed ,Reg :  " << CTrace::hex << fpgaRegister
                          << " len :" << length << " ret = " << ret;
    data.assign(length, 0);
  }
  return kDone;
}

int WriteTestPrintfInfomation(IMD_proto3rd& request) {
  const auto& data = request.proto.m_data;
  if (data.empty()) {
    PARLEND_TRACE(kError) << "=== WriteTestPrintfInfomation ===invalid data";
    return kBadAccess;
  }
  if (data.size() > kWriteLimit || data.size() != request.proto.m_usValidDataLength) {
    PARLEND_TRACE(kError) << "=== WriteTestPrintfInfomation ===length " << data.size()
                          << " is not accepted, return.";
    request.proto.m_ucAck = kAckRefused;
    return kRefused;
  }
  const uint32_t fpgaRegister = request.proto.m_uiRegisterUnitAddress & kFpgaMask;
  const uint16_t length = request.proto.m_usValidDataLength;
  PARLEND_TRACE(kInfo) << "=== Write FPGA test Reg :  " << CTrace::hex << fpgaRegister << " len :" << length;
  if (const int ret = writeFpga(fpgaRegister, data)) {
    PARLEND_TRACE(kError) << "=== Write FPGA test Reg failed ,Reg :  " << CTrace::hex << fpgaRegister
                          << " len :" << length << " ret = " << ret;
  }
  if (fpgaRegister == fpga::kTestPattern && length == kTestPatternLength) {
    constexpr uint8_t kEnable[] = {1};
    writeFpga(fpga::kTestPatternEnable, kEnable);
    PARLEND_TRACE(kInfo) << "============================ Test Partten ===========================";
  }
  return kDone;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kTestPrint>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kTestPrint>({.read = &ReadTestPrintfInfomation,
                                                                          .write = &WriteTestPrintfInfomation,
                                                                          .checks = false,
                                                                          .unknownCode = kDone});
  return kSpace;
}

}  // namespace ORVE_MCUC
