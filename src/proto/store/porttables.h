// Images of the two tables that tell the FPGA which cards lie behind the output ports, with the places of
// their parts on the FPGA bus.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "maps/cardgeometry.h"
#include "maps/fpgamap.h"
#include "proto/store/fpgaimage.h"

namespace ORVE_MCUC {

// Owner: the store; both change under the image lock, on the receive, work, flag and status thread.
struct PortTables {
  FpgaImage<kPortTablesSize>
      PortsTopoPara;          // ten port tables, 1024 positions each in the order of the port's chain
  FpgaImage<768> VsPartPara;  // card counts of the ports, 32 bytes a port, and a part common to all
};
inline constinit PortTables portTables;

inline constexpr auto& PortsTopoPara = portTables.PortsTopoPara;
inline constexpr auto& VsPartPara = portTables.VsPartPara;

// Where a part of VsPartPara lies on the FPGA bus.
struct NumberPart {
  std::size_t at;
  std::size_t length;
  uint32_t fpga;
};
inline constexpr NumberPart kNumberPorts0To3{0x000, 0x80, fpga::kNumberPorts0To3};
inline constexpr NumberPart kNumberPorts4To7{0x080, 0x80, fpga::kNumberPorts4To7};
inline constexpr NumberPart kNumberCommon{0x100, 0x100, fpga::kNumberCommon};
inline constexpr NumberPart kNumberPorts8To11{0x200, 0x80, fpga::kNumberPorts8To11};
inline constexpr NumberPart kNumberPorts12To15{0x280, 0x80, fpga::kNumberPorts12To15};
// All of VsPartPara, in the order of the bus accesses of its register space. Calculation and restore leave
// the last part alone: no screen is cut between its ports, and what flash holds of it stays there until a
// peer writes it.
inline constexpr std::array kNumberParts{kNumberPorts0To3, kNumberPorts4To7, kNumberCommon, kNumberPorts8To11,
                                         kNumberPorts12To15};
// The parts that hold card counts, four ports each.
inline constexpr std::array kNumberPortParts{kNumberPorts0To3, kNumberPorts4To7, kNumberPorts8To11};

inline constexpr std::size_t kBitDepthMarkAt = 0x109;  // of VsPartPara: bit depth and HDR

// A port's card count: u16, 0..9.
constexpr std::size_t cardCountAt(unsigned port) {
  return kNumberPortParts[port / 4].at + std::size_t{0x20} * (port % 4);
}
constexpr uint32_t cardCountOnFpga(unsigned port) {
  return kNumberPortParts[port / 4].fpga + 0x20 * (port % 4);
}
static_assert(cardCountAt(9) == 0x220 && cardCountOnFpga(9) == 0x502020);

// A port's table of positions.
constexpr std::size_t portTableAt(unsigned port) {
  return port * kPortTableSize;
}
constexpr uint32_t portTableOnFpga(unsigned port) {
  return fpga::kPositionTables + static_cast<uint32_t>(portTableAt(port));
}

// A port's table in the image: zeros, and nothing written, for a port that has none.
inline std::array<uint8_t, kPortTableSize> portTable(unsigned port) {
  std::array<uint8_t, kPortTableSize> table{};
  static_cast<void>(PortsTopoPara.copyTo(table, portTableAt(port)));
  return table;
}

}  // namespace ORVE_MCUC
