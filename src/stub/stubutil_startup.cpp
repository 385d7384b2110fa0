// The start-up order.
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/apipc.h"
#include "platform/driver.h"
#include "platform/sysconf.h"
#include "proto/data_common.h"
#include "stub/fpgareportthread.h"
#include "stub/mcuimdthread.h"
#include "stub/mcuprocessthread.h"
#include "stub/stubutil.h"
#include "stub/taskid.h"

namespace ORVE_MCUC {

bool StubUtil::initialize() {
  PARLEND_TRACE(kInfo) << "================================= Begin main init ===============================";
  if (FPGA_UDP_Init() < 0) PARLEND_TRACE(kError) << "=== udp_port_init === fail!!!!";
  apipc_init(taskOf(kServiceParlend), 0);
  Data_Global::getInstance()->SNTransfer();
  Data_Global::getInstance()->ReadHardwareInfo();
  SetEnvParlendVerToRootfs();
  if (!creatIMDComm() || !creatProcess() || !creatFpgaReport()) return false;
  PARLEND_TRACE(kInfo) << "================================= Finish main init ==============================";
  Delay(2000);
  return true;
}

int StubUtil::SetEnvParlendVerToRootfs() {
  const bool open = sysconf_openenv() == 0;
  if (open) {
    const char* rootfs = sysconf_getenv("ver_rootfs");
    SetParlendVersion(rootfs != nullptr ? rootfs : "V1.0.B1");
  }
  sysconf_closeenv();
  return open ? 0 : -1;
}

void StubUtil::SetParlendVersion(const char* version) {
  if (sysconf_openenv() != 0) PARLEND_TRACE(kInfo) << "openenv faild";
  if (sysconf_setenv("ver_parlend", version) != 0) PARLEND_TRACE(kInfo) << "setenv faild";
  sysconf_closeenv();
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
