#include "process/proc_poll.h"

#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

Singleton<Proc_Poll>& holder() {
  static Singleton<Proc_Poll> m_pInstance;
  return m_pInstance;
}

}  // namespace

Proc_Poll* Proc_Poll::getInstance() {
  return holder().get([] { return new Proc_Poll; });
}
void Proc_Poll::deleteInstance() {
  holder().destroy();
}

void Proc_Poll::AutoBrightnessadjust() {
  poll_.tick(Addr_HardWareBrightnessAdjust::control());
}

}  // namespace ORVE_MCUC
