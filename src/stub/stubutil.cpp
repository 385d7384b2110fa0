// What the start-up owner does for everybody below: sends and queues.
#include "stub/stubutil.h"

#include <utility>

#include "singleton.h"
#include "stub/fpgareportthread.h"
#include "stub/mcuimdthread.h"
#include "stub/mcuprocessthread.h"

namespace ORVE_MCUC {
namespace {

// Not destroyed at the end of the program: its threads may run for as long as the process does.
Singleton<StubUtil>& holder() {
  static auto& instance = *new Singleton<StubUtil>;
  return instance;
}

}  // namespace

StubUtil* StubUtil::getInstance() {
  return holder().get([] { return new StubUtil; });
}

void StubUtil::deleteInstance() {
  holder().destroy();
}

StubUtil::StubUtil()
    : m_McuIMDThreadPtr(std::make_shared<McuIMDThread>()),
      m_McuProcessThreadPtr(std::make_shared<McuProcessThread>()),
      m_FpgaReportThreadPtr(std::make_shared<FpgaReportThread>()) {
  setOutgoing(this);
}

StubUtil::~StubUtil() {
  setOutgoing(nullptr);
}

int StubUtil::SendMsg(IMD_proto3rd message) {
  return m_McuIMDThreadPtr->SendMsg(std::move(message));
}

int StubUtil::addMessageToList(MCUProcessDataBlock* item) {
  return m_McuProcessThreadPtr->addMessageToList(item);
}

int StubUtil::send(IMD_proto3rd message) {
  return SendMsg(std::move(message));
}

int StubUtil::queue(std::unique_ptr<MCUProcessDataBlock> item) {
  return addMessageToList(item.release());
}

}  // namespace ORVE_MCUC
