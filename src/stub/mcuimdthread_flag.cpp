// The flag and status thread: waits for the loaded FPGA, announces the daemon, then ticks.
#include "mcuctrace.h"
#include "mcucutil.h"
#include "outofmemory.h"
#include "platform/apipc.h"
#include "process/proc_poll.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "proto/store/data_common.h"
#include "stub/loadflag.h"
#include "stub/mcuimdthread.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

constexpr int kTickMs = 200;
constexpr uint8_t kHighestResetState = 3;
constexpr int kNotConnected = -1;

}  // namespace

int McuIMDThread::CheckFPGAOnline() {
  PARLEND_TRACE(kDebug) << "CheckFPGAOnline begin.";
  return fpgaLoadFlagExists() ? 0 : -1;
}

void McuIMDThread::FlagMsg() {
  PARLEND_TRACE(kDebug) << "FlagMsg process thread begin.";
  while (CheckFPGAOnline() != 0 && !m_flag.exit.load()) waitForFpgaLoadFlag();
  while (!m_flag.exit.load() && !withinMemory("FlagMsg", [this] { bringUp(); })) Delay(kTickMs);
  while (!m_flag.exit.load()) {
    tick();
    Delay(kTickMs);
  }
  PARLEND_TRACE(kDebug) << "FlagMsg process thread exit.";
}

void McuIMDThread::bringUp() {
  PARLEND_TRACE(kError) << "----------------- receive file /etc/init.d/flag_fpgaload.";
  Data_Global& store = *Data_Global::getInstance();
  store.FpgaOnlineFlag = 1;
  // A requester waits for the restore, which would end a reset that is not yet carried out.
  CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
  if (store.RebootRF != ResetState::kIdle) {
    PARLEND_TRACE(kError) << "=== bringUp ===a factory reset is due, the FPGA is not restored.";
    return;
  }
  store.RestoreFPGA();
  store.SendFlag_parlendload();
}

void McuIMDThread::tick() {
  withinMemory("tick", [this] { step(); });
}

void McuIMDThread::step() {
  auto& state = Data_Global::getInstance()->RebootRF;
  // The factory reset's step comes first; until the reset is over nothing else is done.
  Tprocess_ctl::getInstance()->RebootAfterRF();
  if (state == 0) watchStatus();
  const uint8_t reset = state;
  if (reset > kHighestResetState) {
    PARLEND_TRACE(kError) << "=== getInstance()->RebootRF is error large 4! restart it to 0,num is " << reset;
    state = 0;
  }
}

void McuIMDThread::watchStatus() {
  Tprocess_ctl& monitor = *Tprocess_ctl::getInstance();
  LsdApipcConnHandler();
  Data_Global::getInstance()->SendRedundStatustoLSD();
  monitor.SendRedundtoLSD();
  monitor.SendNetLinktoLSD();
  CalculateSenderParaHandler();
  monitor.SendFiberLinktoLSD();
  monitor.SendFiberBelowLinkStatustoLSD();
  monitor.SendFiberRedundtoLSD();
  monitor.SendFiberToNetStatustoLSD();
  monitor.SendFiberCopyStatustoLSD();
  monitor.SendGenLockLinktoLSD();
  Proc_Poll::getInstance()->AutoBrightnessadjust();
  monitor.SendRecvCardParaToLsdByLinkChange();
}

void McuIMDThread::LsdApipcConnHandler() {
  Tprocess_ctl& monitor = *Tprocess_ctl::getInstance();
  if (apipc_connect_chk_task_by_taskid(taskOf(kServiceLsd)) == kNotConnected) {
    monitor.apipc_connect_status = false;
    return;
  }
  // Who left and came back within a tick knows nothing either.
  const uint64_t connection = apipc_connection_number(taskOf(kServiceLsd));
  const bool known = monitor.apipc_connect_status && connection == m_lsdConnection;
  if (known && !monitor.OptToNetEnableOnce) return;
  m_lsdConnection = connection;
  monitor.apipc_connect_status = true;
  monitor.OptToNetEnableOnce = false;
  PARLEND_TRACE(kInfo) << "<<<<<<FlagMsg process thread apipc_connect_chktask_by_taskid success!>>>>>>";
  Data_Global::getInstance()->forget();
}

void McuIMDThread::CalculateSenderParaHandler() {
  Data_Global& store = *Data_Global::getInstance();
  const uint32_t count = store.CalculateParaHandlerCnt;
  if (count == 0 || count != store.submissionsSeen) {
    store.submissionsSeen = count;
    return;
  }
  // Who held the lock may have submitted another one, or an advanced configuration in its place.
  CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
  if (store.CalculateParaHandlerCnt != count || store.submissionsSeen != count) return;
  Tprocess::CalculateParaOfSenderHandler();
  store.forgetSubmissions();
}

}  // namespace ORVE_MCUC
