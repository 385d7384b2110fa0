// The record of a screen configuration as flash holds it, with the blocks of the advanced ports, and each way
// of having it calculated.
#include "maps/flashmap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "testdaemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace ORVE_MCUC;
  constexpr std::size_t kMost = 1500;
  TestDaemon daemon("journal = off\ncards_per_port = 4\n");
  ByteReader input({data, size});
  const auto card = input.bytes(std::min<std::size_t>(input.left(), 4));
  if (card.size() == 4) daemon.board.setCard(1, 0xFF, 0xFFFF, 0x02000017, {card.begin(), card.end()});
  const uint16_t offset = input.le16() % kMost;
  const auto record = input.bytes(std::min(input.left(), kMost - offset));
  if (record.empty()) return 0;
  daemon.write(reg::kShortcutConfigScreen + offset, {record.begin(), record.end()});
  daemon.settle();
  daemon.powerOn();
  daemon.settle();
  return 0;
}
