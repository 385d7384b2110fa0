#include "stub/fpgareportthread.h"

#include "driverutil.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "threadstart.h"

namespace ORVE_MCUC {

int FpgaReportThread::CreateThread() {
  const int result = startDetachedThread("FpgaReportThread::", &ThreadProc, this, m_dwFpgaReportThreadID);
  m_hFpgaReportThread = m_dwFpgaReportThreadID;
  return result;
}

int FpgaReportThread::Release() {
  m_bExitFpgaReportThread.store(true);
  m_bExitFpgaReportThread.notify_all();
  return 0;
}

void* FpgaReportThread::ThreadProc(void* self) {
  static_cast<FpgaReportThread*>(self)->ActiveReport();
  return nullptr;
}

int FpgaReportThread::ActiveReport() {
  PARLEND_TRACE(kInfo) << "ActiveReport thread begin:";
  FPGAReport_init();
  m_bExitFpgaReportThread.wait(false);
  PARLEND_TRACE(kInfo) << "FpgaThread  exit.";
  PARLEND_TRACE(kInfo) << "ActiveReport thread exit.";
  return 0;
}

int FpgaReportThread::FPGAReport_init() {
  constexpr unsigned char kParameters[] = {0x04, 0x00, 0x90, 0x01};
  constexpr unsigned char kEnable[] = {0x00};
  DriverUtil& driver = *DriverUtil::getInstance();
  PARLEND_TRACE(kInfo) << "=============================== FPGAReport_init ============================= ";
  if (const int ret =
          driver.FPGAC5_WriteDataBlock(0, 0, fpga::kReportParameters, sizeof kParameters, kParameters);
      ret < 0) {
    PARLEND_TRACE(kError) << "=== Write reprot para Reg failed! ret = " << ret;
  }
  if (const int ret = driver.FPGAC5_WriteDataBlock(0, 0, fpga::kReportEnable, sizeof kEnable, kEnable);
      ret < 0) {
    PARLEND_TRACE(kError) << "=== Write reprot enable Reg failed! ret = " << ret;
  }
  PARLEND_TRACE(kInfo)
      << "=============================== FPGAReport_init Finish ============================= ";
  return 0;
}

}  // namespace ORVE_MCUC
