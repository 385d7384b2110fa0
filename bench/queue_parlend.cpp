// The daemon's queue with a dispatcher that hands every item to the probe.
#include <cstring>
#include <memory>

#include "process/tprocess_ctl.h"
#include "queue_probe.h"
#include "stub/mcuprocessthread.h"

namespace ORVE_MCUC {

Tprocess_ctl::~Tprocess_ctl() = default;

Tprocess_ctl* Tprocess_ctl::getInstance() {
  static Tprocess_ctl instance;
  return &instance;
}

void Tprocess_ctl::onProcessDealwith(MCUProcessDataBlock* block) {
  bench::Item item;
  std::memcpy(&item, block->getData(), sizeof item);
  bench::handle(item);
}

}  // namespace ORVE_MCUC

namespace bench {
namespace {

class ParlendQueue : public Queue {
 public:
  ParlendQueue() { thread_.Init(); }
  void add(const Item& item) override {
    auto block = std::make_unique<ORVE_MCUC::MCUProcessDataBlock>();
    block->setData(reinterpret_cast<const char*>(&item), static_cast<int>(sizeof item));
    thread_.addMessageToList(block.release());
  }

 private:
  ORVE_MCUC::McuProcessThread thread_;
};

}  // namespace

Queue& parlendQueue() {
  static auto* queue = new ParlendQueue;
  return *queue;
}

}  // namespace bench
