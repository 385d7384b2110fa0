// The lower half of the start-up owner: what everybody uses.
#include "stub/stubutil.h"

#include "mcuctrace.h"
#include "results.h"
#include "stub/fpgareportthread.h"
#include "stub/mcuimdthread.h"
#include "stub/mcuprocessthread.h"

namespace ORVE_MCUC {

StubUtil* StubUtil::getInstance() {
  // Never destroyed: its threads may run for as long as the process does.
  static auto* instance = new StubUtil;
  return instance;
}

StubUtil::StubUtil()
    : m_McuIMDThreadPtr(std::make_shared<McuIMDThread>()),
      m_McuProcessThreadPtr(std::make_shared<McuProcessThread>()),
      m_FpgaReportThreadPtr(std::make_shared<FpgaReportThread>()) {}

StubUtil::~StubUtil() = default;

int StubUtil::SendMsg(IMD_proto3rd message) {
  return m_McuIMDThreadPtr->SendMsg(std::move(message));
}

void StubUtil::addMessageToList(MCUProcessDataBlock* item) {
  m_McuProcessThreadPtr->addMessageToList(item);
}

}  // namespace ORVE_MCUC
