// The flag and status thread: waits for the loaded FPGA, announces the daemon, then ticks.
#include "mcuctrace.h"
#include "mcucutil.h"
#include "proto/data_common.h"
#include "stub/loadflag.h"
#include "stub/mcuimdthread.h"

namespace ORVE_MCUC {
namespace {

constexpr int kTickMs = 200;
constexpr uint8_t kHighestResetState = 3;

}  // namespace

int McuIMDThread::CheckFPGAOnline() {
  PARLEND_TRACE(kDebug) << "CheckFPGAOnline begin.";
  return fpgaLoadFlagExists() ? 0 : -1;
}

void McuIMDThread::FlagMsg() {
  PARLEND_TRACE(kDebug) << "FlagMsg process thread begin.";
  while (CheckFPGAOnline() != 0 && !m_flag.exit.load()) waitForFpgaLoadFlag();
  if (m_flag.exit.load()) return;
  PARLEND_TRACE(kError) << "----------------- receive file /etc/init.d/flag_fpgaload.";
  Data_Global::getInstance()->FpgaOnlineFlag = 1;
  Data_Global::getInstance()->SendFlag_parlendload();
  while (!m_flag.exit.load()) {
    tick();
    Delay(kTickMs);
  }
  PARLEND_TRACE(kDebug) << "FlagMsg process thread exit.";
}

void McuIMDThread::tick() {
  auto& state = Data_Global::getInstance()->RebootRF;
  if (state > kHighestResetState) {
    PARLEND_TRACE(kError) << "=== getInstance()->RebootRF is error large 4! restart it to 0,num is " << state;
    state = 0;
  }
}

}  // namespace ORVE_MCUC
