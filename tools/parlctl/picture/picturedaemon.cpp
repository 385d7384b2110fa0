#include "picturedaemon.h"

#include <algorithm>

#include "maps/fpgamap.h"
#include "maps/gammamap.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;
namespace fpga = ORVE_MCUC::fpga;
namespace reg = ORVE_MCUC::reg;
using peer::Bytes;

constexpr std::size_t kPiece = 1024;

Bytes fpgaBytes(peer::Peer& daemon, uint32_t address, std::size_t length) {
  return daemon.read(reg::kTestPrint + address, length);
}

uint16_t fpgaWord(peer::Peer& daemon, uint32_t address) {
  return map::le16(fpgaBytes(daemon, address, 2), 0);
}

}  // namespace

uint8_t fpgaByte(peer::Peer& daemon, uint32_t address) {
  return fpgaBytes(daemon, address, 1).at(0);
}

LoadedCurve loadedCurve(peer::Peer& daemon) {
  return {fpgaByte(daemon, fpga::kHdrEnable), fpgaByte(daemon, fpga::kBitDepthMark),
          fpgaWord(daemon, fpga::kGammaTables + map::kGammaTableBytes - 2)};
}

GammaTables readGamma(peer::Peer& daemon, bool tenBit) {
  GammaTables tables;
  for (std::size_t channel = 0; channel < tables.size(); ++channel) {
    const map::GammaTable& table = map::kGammaMap[channel + (tenBit ? tables.size() : 0)];
    Bytes bytes;
    while (bytes.size() < map::kGammaTableBytes) {
      const Bytes piece = daemon.read(table.first + static_cast<uint32_t>(bytes.size()), kPiece);
      bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    tables[channel] = gammaOfBytes(bytes);
  }
  return tables;
}

PatternBytes readPattern(peer::Peer& daemon) {
  const Bytes bytes = daemon.read(reg::kScreenPatternGen, map::pattern::kLoadedEnd);
  PatternBytes image{};
  std::copy_n(bytes.begin(), map::pattern::kLoadedEnd, image.begin());
  return image;
}

WallSize wallSize(peer::Peer& daemon) {
  return {fpgaWord(daemon, fpga::kMappedWidth), fpgaWord(daemon, fpga::kScreenHeight)};
}

}  // namespace parlctl
