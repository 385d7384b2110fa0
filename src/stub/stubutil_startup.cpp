// The start-up order.
#include "driverutil.h"
#include "envstore.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/apipc.h"
#include "proto/store/data_common.h"
#include "stub/fpgareportthread.h"
#include "stub/mcuimdthread.h"
#include "stub/mcuprocessthread.h"
#include "stub/stubutil.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

constexpr int kSettleMs = 2000;  // the threads come up before the main thread goes to sleep

}  // namespace

bool StubUtil::initialize() {
  prepare();
  const bool channel = creatIMDComm();
  if (!channel) m_McuProcessThreadPtr->giveUp();  // a receive thread may run all the same, and queue
  if (!channel || !creatProcess() || !creatFpgaReport()) return false;
  PARLEND_TRACE(kInfo) << "================================= Finish main init ==============================";
  Delay(kSettleMs);
  return true;
}

void StubUtil::prepare() {
  PARLEND_TRACE(kInfo) << "================================= Begin main init ===============================";
  if (DriverUtil::getInstance()->initUdp() < 0) PARLEND_TRACE(kError) << "=== udp_port_init === fail!!!!";
  apipc_init(taskOf(kServiceParlend), 0);
  Data_Global::getInstance()->SNTransfer();
  Data_Global::getInstance()->ReadHardwareInfo();
  // Fills the images, so that requests and saves find what was saved; the FPGA itself follows once it is
  // loaded.
  Data_Global::getInstance()->RestoreFPGA();
  SetEnvParlendVerToRootfs();
}

int StubUtil::SetEnvParlendVerToRootfs() {
  const OpenStore store;
  if (!store) return -1;
  const char* rootfs = sysconf_getenv("ver_rootfs");
  SetParlendVersion(rootfs != nullptr ? rootfs : "V1.0.B1");
  return 0;
}

void StubUtil::SetParlendVersion(const char* version) {
  const OpenStore store;
  if (!store) PARLEND_TRACE(kInfo) << "openenv faild";
  if (sysconf_setenv("ver_parlend", version) != 0) PARLEND_TRACE(kInfo) << "setenv faild";
}

bool StubUtil::creatIMDComm() {
  return m_McuIMDThreadPtr->Init() == 0;
}
bool StubUtil::creatProcess() {
  return m_McuProcessThreadPtr->Init() == 0;
}
bool StubUtil::creatFpgaReport() {
  return m_FpgaReportThreadPtr->Init() == 0;
}

}  // namespace ORVE_MCUC
