// Programs the FPGA's report registers at start, and tests FPGA tables for as long as Data_Global's
// RWFPGATestflag is 1. Asleep otherwise.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

namespace ORVE_MCUC {

// Writes patterns over the beginning of the position and the port-number tables, in blocks of several sizes,
// and reads them back; what cannot be transferred and every byte that differs is logged. The tables keep the
// last pattern.
void testfpgareadwrite();

class FpgaReportThread {
 public:
  FpgaReportThread() = default;
  FpgaReportThread(const FpgaReportThread&) = delete;
  FpgaReportThread& operator=(const FpgaReportThread&) = delete;
  ~FpgaReportThread() { UnInit(); }

  // Starts the thread: 0, or kErrThread.
  int Init() { return CreateThread(); }
  int CreateThread();
  int Release();
  void UnInit() { Release(); }

  // The thread's body: the register writes, then table tests while they are asked for, until Release().
  int ActiveReport();
  // Report parameters and report enable; a failed write is logged. 0.
  int FPGAReport_init();

 private:
  static void* ThreadProc(void* self);
  void runTest();

  pthread_t m_dwFpgaReportThreadID{};
  pthread_t m_hFpgaReportThread{};
  std::atomic<bool> m_bExitFpgaReportThread{false};
  uint32_t m_testsRun = 0;
};

}  // namespace ORVE_MCUC
