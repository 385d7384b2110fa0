// Items of deferred work as they lie in the queue: key u8, length u16, payload; then ticks.
#include <memory>

#include "pieces.h"
#include "stub/mcuprocessdatablock.h"
#include "stub/stubutil.h"
#include "testdaemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace ORVE_MCUC;
  TestDaemon daemon("journal = off\ncards_per_port = 4\n");
  daemon.connect();
  fuzz::forEachPiece({data, size}, [&](uint8_t key, std::span<const uint8_t> payload) {
    auto item = std::make_unique<MCUProcessDataBlock>();
    item->m_key = key;
    item->setData(reinterpret_cast<const char*>(payload.data()), static_cast<int>(payload.size()));
    StubUtil::getInstance()->addMessageToList(item.release());
    daemon.workOff();
  });
  daemon.tick(3);
  return 0;
}
