// A peer's requests, through decoding, routing, spaces, cards, queued work and the ticks that follow. The
// input is requests one after the other: options u8, length u16, perhaps a head, frame; the checksum is put
// right, or hardly any would get in.
#include <algorithm>

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

// Leaves the frame behind the head: as long as the head says, or as there is for it. A length that no frame
// can have stays, as such a frame has to be turned away unread.
peer::Head takeHead(std::span<const uint8_t>& bytes) {
  peer::Head head = peer::decodeHead(bytes);
  bytes = bytes.subspan(peer::kHeadSize);
  if (head.frameLength > peer::kMaxFrame) return head;
  bytes = bytes.first(std::min<std::size_t>(bytes.size(), head.frameLength));
  head.frameLength = static_cast<uint32_t>(bytes.size());
  return head;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  TestDaemon daemon("journal = off\ncopper_ports = 0-3\ncards_per_port = 4\nsensor = 0 0 0 100\n");
  daemon.connect();
  fuzz::forEachPiece({data, size}, [&](uint8_t options, std::span<const uint8_t> bytes) {
    const bool headed = (options & fuzz::kBeginsWithHead) != 0 && bytes.size() >= peer::kHeadSize;
    const peer::Head head =
        headed ? takeHead(bytes) : peer::Head{.small = static_cast<uint16_t>(options & 3)};
    TestDaemon::Bytes frame(bytes.begin(), bytes.end());
    if (testsRate(frame)) return;
    if ((options & fuzz::kLeaveChecksum) == 0) repair(frame);
    if (headed) {
      daemon.arrive(head, frame);
    } else {
      daemon.exchange(frame, head);
    }
    daemon.workOff();
    if ((options & fuzz::kTickAfter) != 0) daemon.tick();
  });
  daemon.tick(3);
  return 0;
}
