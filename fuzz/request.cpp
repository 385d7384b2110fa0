// A peer's requests, through decoding, routing, spaces, cards, queued work and the ticks that follow. The
// input is requests one after the other: options u8, length u16, frame; the checksum is put right, or hardly
// any would get in.
#include "maps/registermap.h"
#include "pieces.h"
#include "testdaemon.h"

namespace {

void repair(TestDaemon::Bytes& frame) {
  if (frame.size() < peer::kFrameOverhead) return;
  const uint16_t sum = peer::checksum(std::span(frame).subspan(2, frame.size() - 4));
  ORVE_MCUC::putLe16(frame, frame.size() - 2, sum);
}

// A rate test takes a second of real time, however it is asked for.
bool testsRate(std::span<const uint8_t> frame) {
  constexpr std::size_t kAddressAt = 12;
  if (frame.size() < peer::kFrameOverhead) return false;
  const uint32_t address = ORVE_MCUC::le32(frame, kAddressAt);
  return address == ORVE_MCUC::reg::kReadRateTest || address == ORVE_MCUC::reg::kWriteRateTest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  TestDaemon daemon("journal = off\ncopper_ports = 0-3\ncards_per_port = 4\nsensor = 0 0 0 100\n");
  daemon.connect();
  fuzz::forEachPiece({data, size}, [&](uint8_t options, std::span<const uint8_t> bytes) {
    TestDaemon::Bytes frame(bytes.begin(), bytes.end());
    if (testsRate(frame)) return;
    if ((options & fuzz::kLeaveChecksum) == 0) repair(frame);
    daemon.exchange(frame, {.small = static_cast<uint16_t>(options & 3)});
    daemon.workOff();
    if ((options & fuzz::kTickAfter) != 0) daemon.tick();
  });
  daemon.tick(3);
  return 0;
}
