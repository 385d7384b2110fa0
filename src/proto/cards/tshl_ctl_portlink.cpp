// Whether an output port has a link, as the FPGA shows it now.
#include <array>
#include <span>

#include "maps/cardgeometry.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/deviceaccess.h"
#include "proto/tshl_ctl.h"

namespace ORVE_MCUC {
namespace {

constexpr unsigned int kAllPorts = 0xFF;
constexpr unsigned int kPortsOfNetByte = 4;
constexpr unsigned int kPortsOfFiberByte = 8;
constexpr unsigned int kBytesOfFiberPath = 2;

// Registers of the FPGA; zeros, and an Error line, when they cannot be read.
template <std::size_t Length>
std::array<uint8_t, Length> linkBytes(uint32_t address, const char* name) {
  std::array<uint8_t, Length> bytes{};
  if (readFpga(address, bytes) == 0) return bytes;
  PARLEND_TRACE(kError) << "=== PortLinkVerify ===Read from FPGA basicPara failed when reading " << name
                        << " information! ";
  return {};
}

}  // namespace

unsigned char Tshl_ctl::PortLinkVerify(unsigned char PortAddr) {
  if (PortAddr == kAllPorts) {
    PARLEND_TRACE(kError) << "=== PortLinkVerify === PortAddr = 0xFF, LinkVerify = 1 , return 1";
    return 1;
  }
  if (PortAddr >= kOutputPorts) {
    PARLEND_TRACE(kError) << "=== PortLinkVerify ===NetPort = " << PortAddr << " is invalid! ";
    return 0;
  }
  const auto net = linkBytes<4>(fpga::kNetPortLinks, "NetPortLink 0x00f05100");
  const auto fiber = linkBytes<4>(fpga::kFiberPortLinks, "OptNetPortLink 0x00f04000");
  const uint8_t module = linkBytes<1>(fpga::kFiberLink, "OptLink 0x1d7")[0];
  if ((net[PortAddr / kPortsOfNetByte] >> PortAddr % kPortsOfNetByte & 1) != 0) return 1;
  const unsigned int at = PortAddr / kPortsOfFiberByte;
  const int paths = fiber[at] | fiber[at + kBytesOfFiberPath];
  if (module != fpga::kFiberModuleBits && (paths >> PortAddr % kPortsOfFiberByte & 1) != 0) return 1;
  const unsigned int first = PortAddr / kPortsOfNetByte * kPortsOfNetByte;
  PARLEND_TRACE(kError) << "=== PortLinkVerify ===((PortAddr>=" << int(first)
                        << ")&&(PortAddr<=" << int(first + kPortsOfNetByte - 1) << ")) no linked , return 0";
  return 0;
}

}  // namespace ORVE_MCUC
