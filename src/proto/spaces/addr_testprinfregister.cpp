#include "proto/spaces/addr_testprinfregister.h"

#include "driverutil.h"
#include "maps/fpgamap.h"

namespace ORVE_MCUC {
namespace {

// Row of the diagnostics only: this space looks at the length itself.
constexpr std::array kRows{offsetRow(reg::kTestPrint, "testprintf", "testprintf Infomation", {1, 2048},
                                     &Addr_TestPrinfRegister::REG_TestPrintfInfomation),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

constexpr uint32_t kFpgaMask = 0x0FFFFFFF;
constexpr uint16_t kReadLimit = 4096;      // a read of as much is refused
constexpr std::size_t kWriteLimit = 4096;  // a write of more is refused
constexpr uint16_t kTestPatternLength = 25;

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_TestPrinfRegister::cmd_tblOffset = kRows;

int Addr_TestPrinfRegister::Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int) {
  return REG_TestPrintfInfomation(msgIMD, tbl, 0);
}

int Addr_TestPrinfRegister::REG_TestPrintfInfomation(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  if (msgIMD == nullptr) {
    PARLEND_TRACE(kInfo) << "***************************REG_TestPrintfInfomation**************\n";
  }
  return readOrWrite(msgIMD, &ReadTestPrintfInfomation, &WriteTestPrintfInfomation, kDone);
}

int Addr_TestPrinfRegister::ReadTestPrintfInfomation(IMD_proto3rd* msgIMD) {
  const uint32_t fpgaRegister = msgIMD->proto.m_uiRegisterUnitAddress & kFpgaMask;
  const uint16_t length = msgIMD->proto.m_usValidDataLength;
  if (length >= kReadLimit) {
    PARLEND_TRACE(kError) << "=== ReadTestPrintfInfomation ===length " << length << " is too long, return.";
    msgIMD->proto.m_ucAck = kAckRefused;
    return kRefused;
  }
  PARLEND_TRACE(kInfo) << "=== Read FPGA test Reg :  " << CTrace::hex << fpgaRegister << " len :" << length;
  auto& data = msgIMD->proto.m_data;
  data.assign(length, 0);
  const int ret = DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, fpgaRegister, length, data.data());
  if (ret < 0) {
    PARLEND_TRACE(kError) << "=== Read FPGA test Reg failed ,Reg :  " << CTrace::hex << fpgaRegister
                          << " len :" << length << " ret = " << ret;
  }
  return kDone;
}

int Addr_TestPrinfRegister::WriteTestPrintfInfomation(IMD_proto3rd* msgIMD) {
  const auto& data = msgIMD->proto.m_data;
  if (data.empty()) {
    PARLEND_TRACE(kError) << "=== WriteTestPrintfInfomation ===invalid data";
    return kBadAccess;
  }
  if (data.size() > kWriteLimit || data.size() != msgIMD->proto.m_usValidDataLength) {
    PARLEND_TRACE(kError) << "=== WriteTestPrintfInfomation ===length " << data.size()
                          << " is not accepted, return.";
    msgIMD->proto.m_ucAck = kAckRefused;
    return kRefused;
  }
  const uint32_t fpgaRegister = msgIMD->proto.m_uiRegisterUnitAddress & kFpgaMask;
  const uint16_t length = msgIMD->proto.m_usValidDataLength;
  PARLEND_TRACE(kInfo) << "=== Write FPGA test Reg :  " << CTrace::hex << fpgaRegister << " len :" << length;
  DriverUtil& driver = *DriverUtil::getInstance();
  const int ret = driver.FPGAC5_WriteDataBlock(0, 0, fpgaRegister, length, data.data());
  if (ret < 0) {
    PARLEND_TRACE(kError) << "=== Write FPGA test Reg failed ,Reg :  " << CTrace::hex << fpgaRegister
                          << " len :" << length << " ret = " << ret;
  }
  if (fpgaRegister == fpga::kTestPattern && length == kTestPatternLength) {
    const uint8_t enable = 1;
    driver.FPGAC5_WriteDataBlock(0, 0, fpga::kTestPatternEnable, 1, &enable);
    PARLEND_TRACE(kInfo) << "============================ Test Partten ===========================";
  }
  return kDone;
}

}  // namespace ORVE_MCUC
