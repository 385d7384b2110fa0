// Parameter flash with anything in it: a start with its restore, ten ticks, then everything that has the
// daemon read more of it. The input is an options byte and pieces of flash: place in the flash map, length,
// offset in the area u16, bytes.
#include "maps/commands.h"
#include "maps/flashmap.h"
#include "maps/shortcutrecord.h"
#include "pieces.h"
#include "testdaemon.h"

namespace {

using namespace ORVE_MCUC;

constexpr uint8_t kAfterReset = 0x01;
constexpr char kBoard[] = "journal = off\ncards_per_port = 4\nsensor = 0 0 0 100\n";
constexpr int64_t kNoon = 1700049600;
constexpr uint16_t kSome = 64;
constexpr unsigned kToSensors = 100;  // ticks before the automatic brightness reads them

void layInto(TestDaemon& daemon, std::span<const uint8_t> pieces) {
  daemon.prepare("hw/flash.bin", "");
  fuzz::forEachPiece(pieces, [&](uint8_t place, std::span<const uint8_t> bytes) {
    const flash::Area& area = flash::kAreas[place % flash::kAreas.size()];
    ByteReader piece(bytes);
    const uint32_t offset = piece.le16() % area.length;
    const auto held = piece.bytes(std::min<std::size_t>(piece.left(), area.length - offset));
    daemon.board.setFlash(area.address + offset, {held.begin(), held.end()});
  });
}

void readAll(TestDaemon& daemon) {
  for (const auto& window : flash::kWindows) daemon.read(window.base, kSome);
  daemon.read(reg::kEdid, 1);  // detects the inputs, which get their stored modes
}

// A submission calculates with what flash holds; the write that submits leaves it as it is.
void calculate(TestDaemon& daemon) {
  const auto cards = static_cast<uint32_t>(shortcut::kCardsPerPortAt);
  daemon.write(reg::kShortcutConfigScreen + cards, daemon.board.flash(flash::kShortcutConfig + cards, 2));
  daemon.settle();
  daemon.write(reg::kShortcutConfigScreen, {shortcut::kSubmitAdvanced});
  daemon.settle();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::span input(data, size);
  const uint8_t options = input.empty() ? uint8_t{0} : input[0];
  TestDaemon daemon(TestDaemon::Later{});
  layInto(daemon, input.subspan(std::min<std::size_t>(size, 1)));
  if ((options & kAfterReset) != 0) daemon.prepare("etc/sysconf.env", "firstboot=1\n");
  daemon.start(kBoard);
  daemon.board.setClock(kNoon);
  daemon.connect();
  daemon.tick(10);
  readAll(daemon);
  calculate(daemon);
  daemon.write(reg::kCommand + command::kReloadProgram, {1});
  daemon.settle();
  daemon.tick(kToSensors);
  return 0;
}
