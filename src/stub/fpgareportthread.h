// Programs the FPGA's report registers at start.
#pragma once

#include <pthread.h>

#include <atomic>

namespace ORVE_MCUC {

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

  // The thread's body: the register writes, then nothing until Release().
  int ActiveReport();
  // Report parameters and report enable; a failed write is logged. 0.
  int FPGAReport_init();

 private:
  static void* ThreadProc(void* self);

  pthread_t m_dwFpgaReportThreadID{};
  pthread_t m_hFpgaReportThread{};
  std::atomic<bool> m_bExitFpgaReportThread{false};
};

}  // namespace ORVE_MCUC
