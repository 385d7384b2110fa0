// Parameter flash with anything in it, through a start with its restore and ten ticks. The input is pieces of
// flash: place u8, offset u16, length u16, bytes.
#include <array>

#include "maps/flashmap.h"
#include "mcucdatablock.h"
#include "testdaemon.h"

namespace {

namespace flash = ORVE_MCUC::flash;

constexpr std::array kPlaces{flash::kBasicHardwarePage,   flash::kBasicHardwareCopy, flash::kFeature,
                             flash::kPositionTables,      flash::kNumberTable,       flash::kRole,
                             flash::kGlobalPara,          flash::kFormatTag,         flash::kBackupInfo,
                             flash::kShortcutConfig,      flash::kScreenSize,        flash::kCardSize,
                             flash::kShortcutForVsp,      flash::kScreenPara,        flash::kSoftwareTable,
                             flash::kGamma10BitTags,      flash::kGamma12BitTags,    flash::kGamma10BitTables,
                             flash::kGamma12BitValue,     flash::kDeviceNameFile,    flash::kCardBrightness,
                             flash::kScreenChangeCounter, flash::kConfigFiles,       flash::kInputModes,
                             flash::kLauncher3D};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  TestDaemon daemon("journal = off\ncards_per_port = 4\nsensor = 0 0 0 100\n");
  ORVE_MCUC::ByteReader input({data, size});
  while (input.left() > 0) {
    const uint32_t place = kPlaces[input.u8() % kPlaces.size()];
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
