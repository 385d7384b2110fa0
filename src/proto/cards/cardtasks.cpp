#include "proto/cards/cardtasks.h"

#include <algorithm>

#include "maps/cardmap.h"
#include "maps/flashmap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

uint8_t byteAt(std::span<const uint8_t> data, std::size_t at) {
  return at < data.size() ? data[at] : uint8_t{0};
}

template <int Microseconds>
int fixedPause(uint32_t) {
  return Microseconds;
}

int receivingCardPause(uint32_t next) {
  if (next >> 24 != card::kCorrectionTop) return 10000;
  return Data_Global::getInstance()->_gCorroentHighSpeed == 1 ? 200 : 5000;
}

void keepBrightness(const CardWrite& write) {
  if (write.address != card::kBrightness || write.data.size() != 1) return;
  const int result = writeFlash(flash::kCardBrightness, write.data);
  if (result != 0) PARLEND_TRACE(kInfo) << "Write BrightnessInfo to flash failed. ret = " << result;
}

void tellLsdOfChunk(const CardWrite& write, uint32_t address, std::span<const uint8_t> chunk) {
  const bool mirrored = address == card::kBrightness || (address == card::kMirroredByte && chunk.size() == 1);
  if (!write.fromLsd && mirrored) Data_Global::getInstance()->SendDatetoLSD(address, chunk.first(1));
  if (write.fromLsd && write.address == card::kSlowCommand) PARLEND_TRACE(kInfo) << "delay .... ";
}

// Where what a launcher was told is kept twice: two places in flash, and where other parameters begin behind
// them.
struct KeptTwice {
  struct Place {
    uint32_t address;
    uint32_t end;
    std::span<const uint8_t> fitting(std::span<const uint8_t> data) const {
      return data.first(std::min<std::size_t>(data.size(), end - address));
    }
  };
  Place first;
  Place copy;
};
constexpr KeptTwice kLauncherMode{{flash::kLauncher3D, flash::kLauncher3DEnd},
                                  {flash::kLauncher3DCopy, flash::kLauncher3DCopyEnd}};
constexpr KeptTwice kLauncherColour{{flash::kLauncher3DColour, flash::kLauncher3DEnd},
                                    {flash::kLauncher3DColourCopy, flash::kLauncher3DCopyEnd}};

void keepTwice(std::span<const uint8_t> data, const KeptTwice& places) {
  const auto first = places.first.fitting(data);
  const auto copy = places.copy.fitting(data);
  if (first.size() < data.size() || copy.size() < data.size()) {
    PARLEND_TRACE(kError) << "=== Ssh_Start3DLauncher ===of " << data.size() << " bytes " << first.size()
                          << " are kept in flash, of the copy " << copy.size();
  }
  const int result = writeFlash(places.first.address, first);
  const int copyResult = writeFlash(places.copy.address, copy);
  if (result == 0 && copyResult == 0) return;
  PARLEND_TRACE(kError) << "=== Ssh_Start3DLauncher ===Write 3D Para to flash failed. ret = " << result
                        << ", of the copy " << copyResult;
}

void tellLsdAndKeep3D(const CardWrite& write) {
  constexpr uint32_t kLsdOffset = 0x2000;
  const std::span data(write.data);
  if (!write.fromLsd) {
    PARLEND_TRACE(kInfo) << "=============================1-3D Para to Videod & LSD Addr:" << CTrace::hex
                         << write.address << "==============================";
    Data_Global::getInstance()->SendDatetoLSD(write.address + kLsdOffset, data);
  }
  if (data.empty()) return;
  if (write.address == card::kLauncherMode) {
    PARLEND_TRACE(kInfo) << "=============================0x000024006 : " << byteAt(data, 0);
    keepTwice(data, kLauncherMode);
  } else if (write.address == card::kLauncherColour) {
    PARLEND_TRACE(kInfo) << "=============================0x000024007 : " << byteAt(data, 0) << " :"
                         << byteAt(data, 1) << " :" << byteAt(data, 2);
    keepTwice(data, kLauncherColour);
  }
}

void say3DReached(uint32_t reached) {
  PARLEND_TRACE(kInfo) << "=============================3D Para to Videod & LSD Addr:" << CTrace::hex
                       << reached << "==============================";
}

}  // namespace

constinit const CardTask kReceivingCards{
    .selector = card::kReceivingCard,
    .chunkSize = 512,
    .noAnswer = kAckNoAnswer,
    .outspoken = true,
    .showsData = true,
    .pause = &receivingCardPause,
    .beforeWrite = &keepBrightness,
    .afterChunk = &tellLsdOfChunk,
    .section = {"============================= Begin ScanCard Task ===============================",
                "============================= Finish ScanCard Task =============================="},
    .name = "RecvCard",
    .cards = "receive card",
    .readDone = "Read receive card finished ok. ",
    .readFailed = "=== Ssh_StartScanCard ===Read receive card failed, return  ",
};
constinit const CardTask kMultiCards{
    .selector = card::kMultiFunctionCard,
    .chunkSize = 256,
    .noAnswer = kAckRefused,
    .pause = &fixedPause<23000>,
    .section = {"============================= Begin MultiCard Task ==============================",
                "============================= Finish MultiCard Task ============================="},
    .name = "MultiCard",
    .cards = "multi card",
    .readDone = "Read multi card finished. ",
    .readFailed = "=== Ssh_StartMultiCard ===Read multi card failed, return! ",
};
constinit const CardTask kDistributionCards{
    .selector = card::kDistributionCard,
    .chunkSize = 256,
    .noAnswer = kAckRefused,
    .asksTheLink = true,
    .pause = &fixedPause<25000>,
    .section = {"============================ Begin Distribute Task ==============================",
                "============================ Finish Distribute Task ============================="},
    .name = "Distribute",
    .cards = "Distribute",
    .readDone = "Read Distribute finished. ",
    .readFailed = "=== Ssh_StartDistribute ===Read Distribute failed, return! ",
};
constinit const CardTask kLaunchers3D{
    .selector = card::kLauncher3D,
    .chunkSize = 512,
    .noAnswer = kAckRefused,
    .outspoken = true,
    .pause = &fixedPause<5000>,
    .beforeWrite = &tellLsdAndKeep3D,
    .afterWrite = &say3DReached,
    .section = {"============================= Begin 3DLauncher Task ===============================",
                "============================= Finish 3DLauncher Task =============================="},
    .name = "3DLauncher",
    .cards = "3DLauncher",
    .readDone = "Read 3DLauncher finished ok. ",
    .readFailed = "=== Ssh_Start3DLauncher ===Read 3DLauncher failed, return  ",
};

}  // namespace ORVE_MCUC
