// Items of deferred work as they lie in the queue: key u8, length u16, payload; then ticks.
#include <memory>

#include "mcucdatablock.h"
#include "stub/mcuprocessdatablock.h"
#include "stub/stubutil.h"
#include "testdaemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace ORVE_MCUC;
  TestDaemon daemon("journal = off\ncards_per_port = 4\n");
  daemon.connect();
  ByteReader input({data, size});
  while (input.left() > 0) {
    auto item = std::make_unique<MCUProcessDataBlock>();
    item->m_key = static_cast<int8_t>(input.u8());
    const auto payload = input.bytes(std::min<std::size_t>(input.le16(), input.left()));
    item->setData(reinterpret_cast<const char*>(payload.data()), static_cast<int>(payload.size()));
    StubUtil::getInstance()->addMessageToList(item.release());
    daemon.workOff();
  }
  daemon.tick(3);
  return 0;
}
