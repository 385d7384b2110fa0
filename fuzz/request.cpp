// A peer's requests, through decoding, routing, spaces, cards, queued work and the ticks that follow. The
// input is requests one after the other: options u8, length u16, frame; the checksum is put right, or hardly
// any would get in.
#include "mcucdatablock.h"
#include "testdaemon.h"

namespace {

constexpr uint8_t kLeaveChecksum = 0x80;
constexpr uint8_t kTickAfter = 0x40;

void repair(TestDaemon::Bytes& frame) {
  if (frame.size() < peer::kFrameOverhead) return;
  const uint16_t sum = peer::checksum(std::span(frame).subspan(2, frame.size() - 4));
  ORVE_MCUC::putLe16(frame, frame.size() - 2, sum);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  TestDaemon daemon("journal = off\ncopper_ports = 0-3\ncards_per_port = 4\nsensor = 0 0 0 100\n");
  daemon.connect();
  ORVE_MCUC::ByteReader input({data, size});
  while (input.left() > 0) {
    const uint8_t options = input.u8();
    const std::size_t length = std::min<std::size_t>(input.le16(), input.left());
    const auto bytes = input.bytes(length);
    TestDaemon::Bytes frame(bytes.begin(), bytes.end());
    if ((options & kLeaveChecksum) == 0) repair(frame);
    daemon.exchange(frame, {.small = static_cast<uint16_t>(options & 3)});
    daemon.workOff();
    if ((options & kTickAfter) != 0) daemon.tick();
  }
  daemon.tick(3);
  return 0;
}
