#include "stub/fpgareportthread.h"

#include <array>
#include <span>

#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "outofmemory.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "threadstart.h"

namespace ORVE_MCUC {
namespace {

constexpr int kTestPeriodUs = 1000;
constexpr int kSettleUs = 100;  // between writing a block and reading it back
constexpr uint32_t kTestsPerLine = 100;
constexpr std::size_t kSmallestBlock = 16;
constexpr std::size_t kLargestBlock = 1024;
constexpr uint8_t kPatterns[] = {0xAA, 0x55};

// A table under test; tools look for these texts.
struct TestedTable {
  uint32_t address;
  std::size_t largestBlock;
  const char* writeFailed;
  const char* readFailed;
  const char* differs;
};

constexpr TestedTable kTestedTables[] = {
    {fpga::kPositionTables, 1024, "=== WriteToPosNetPort ===Write FPGA Position ",
     "=== ReadFromPosNetPort ===Read FPGA Posi ", "Read_Write FPGA 0x03000000 "},
    {fpga::kNumberPorts0To3, 256, "=== WriteFromNumberFunCardPort ===Write FPGA NumberFunCardPort ",
     "=== ReadFromNumberFunCardPort ===Read FPGA NumberFunCardPort ", "Read_Write FPGA 0x03100000 "}};

void logDifferences(const TestedTable& table, std::span<const uint8_t> sent,
                    std::span<const uint8_t> received) {
  for (std::size_t i = 0; i < sent.size(); ++i) {
    if (sent[i] == received[i]) continue;
    PARLEND_TRACE(kInfo) << table.differs << sent.size() << " Word , Data error  reg = " << i << " sendData "
                         << sent[i] << " recvData " << received[i];
  }
}

void testBlock(const TestedTable& table, std::span<const uint8_t> sent, std::span<uint8_t> received) {
  const int written = writeFpga(table.address, sent);
  if (written != 0)
    PARLEND_TRACE(kError) << table.writeFailed << sent.size() << " Word Info failed! ret = " << written;
  DelayMicroseconds(kSettleUs);
  const int read = readFpga(table.address, received);
  if (read != 0)
    PARLEND_TRACE(kError) << table.readFailed << sent.size() << "Word Info failed! ret = " << read;
  if (written == 0 && read == 0) logDifferences(table, sent, received);
}

// Whatever becomes of it, the next register is programmed.
void program(uint32_t address, std::span<const uint8_t> bytes, const char* failed) {
  withinMemory("FPGAReport_init", [&] {
    if (const int ret = writeFpga(address, bytes); ret < 0) PARLEND_TRACE(kError) << failed << ret;
  });
}

}  // namespace

void testfpgareadwrite() {
  std::array<uint8_t, kLargestBlock> sent{};
  std::array<uint8_t, kLargestBlock> received{};
  for (const TestedTable& table : kTestedTables) {
    for (std::size_t size = kSmallestBlock; size <= table.largestBlock; size *= 2) {
      for (const uint8_t pattern : kPatterns) {
        sent.fill(pattern);
        testBlock(table, std::span(sent).first(size), std::span(received).first(size));
      }
    }
  }
}

int FpgaReportThread::CreateThread() {
  const int result = startDetachedThread("FpgaReportThread::", &ThreadProc, this, m_dwFpgaReportThreadID);
  m_hFpgaReportThread = m_dwFpgaReportThreadID;
  return result;
}

int FpgaReportThread::Release() {
  m_bExitFpgaReportThread.store(true);
  Data_Global::getInstance()->RWFPGATestflag.wake();
  return 0;
}

void* FpgaReportThread::ThreadProc(void* self) {
  static_cast<FpgaReportThread*>(self)->ActiveReport();
  return nullptr;
}

int FpgaReportThread::ActiveReport() {
  PARLEND_TRACE(kInfo) << "ActiveReport thread begin:";
  FPGAReport_init();
  WaitableByte& flag = Data_Global::getInstance()->RWFPGATestflag;
  for (;;) {
    const uint32_t ticket = flag.ticket();
    if (m_bExitFpgaReportThread.load()) break;
    if (flag == 1) {
      runTest();
    } else {
      flag.wait(ticket);
    }
  }
  PARLEND_TRACE(kInfo) << "FpgaThread  exit.";
  PARLEND_TRACE(kInfo) << "ActiveReport thread exit.";
  return 0;
}

void FpgaReportThread::runTest() {
  withinMemory("ActiveReport", &testfpgareadwrite);
  if (++m_testsRun % kTestsPerLine == 0) PARLEND_TRACE(kInfo) << "Read_Write FPGA test : " << m_testsRun;
  DelayMicroseconds(kTestPeriodUs);
}

int FpgaReportThread::FPGAReport_init() {
  constexpr uint8_t kParameters[] = {0x04, 0x00, 0x90, 0x01};
  constexpr uint8_t kEnable[] = {0x00};
  PARLEND_TRACE(kInfo) << "=============================== FPGAReport_init ============================= ";
  program(fpga::kReportParameters, kParameters, "=== Write reprot para Reg failed! ret = ");
  program(fpga::kReportEnable, kEnable, "=== Write reprot enable Reg failed! ret = ");
  PARLEND_TRACE(kInfo)
      << "=============================== FPGAReport_init Finish ============================= ";
  return 0;
}

}  // namespace ORVE_MCUC
