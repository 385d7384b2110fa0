#include "outgoing.h"

#include <atomic>
#include <utility>

#include "results.h"

namespace ORVE_MCUC {
namespace {

constinit std::atomic<Outgoing*> g_inCharge{nullptr};

}  // namespace

void setOutgoing(Outgoing* inCharge) {
  g_inCharge.store(inCharge);
}

int sendMessage(IMD_proto3rd message) {
  Outgoing* inCharge = g_inCharge.load();
  return inCharge != nullptr ? inCharge->send(std::move(message)) : kErrSend;
}

int queueWork(std::unique_ptr<MCUProcessDataBlock> item) {
  Outgoing* inCharge = g_inCharge.load();
  return inCharge != nullptr ? inCharge->queue(std::move(item)) : kRefused;
}

}  // namespace ORVE_MCUC
