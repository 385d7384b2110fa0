// Parameter flash with anything in it, through a start with its restore and ten ticks. The input is pieces of
// flash: area u8, offset u16, length u16, bytes.
#include <algorithm>

#include "maps/flashmap.h"
#include "mcucdatablock.h"
#include "testdaemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  namespace flash = ORVE_MCUC::flash;
  TestDaemon daemon("journal = off\ncards_per_port = 4\nsensor = 0 0 0 100\n");
  ORVE_MCUC::ByteReader input({data, size});
  while (input.left() > 0) {
    const uint32_t place = flash::kAreas[input.u8() % flash::kAreas.size()].address;
    const uint32_t offset = input.le16();
    const auto bytes = input.bytes(std::min<std::size_t>(input.le16(), input.left()));
    daemon.board.setFlash(place + offset, {bytes.begin(), bytes.end()});
  }
  daemon.powerOn();
  daemon.connect();
  daemon.tick(10);
  daemon.workOff();
  return 0;
}
