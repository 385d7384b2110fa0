// Registers of the sending FPGA's bus, by name.
#pragma once

#include <cstdint>

namespace ORVE_MCUC::fpga {

inline constexpr uint32_t kMasterSlavePorts1To4 = 0x18;
inline constexpr uint32_t kMasterSlavePorts5To8 = 0x98;
inline constexpr uint32_t kMasterSlavePorts9To16 = 0x100;
inline constexpr uint32_t kTestPatternEnable = 0x00100051;
inline constexpr uint32_t kReportEnable = 0x00100070;
inline constexpr uint32_t kReportParameters = 0x00100071;
inline constexpr uint32_t kGammaTables = 0x00700000;  // one 64 KiB page a colour: red, green, blue
inline constexpr uint32_t kGammaTableStride = 0x00010000;
inline constexpr uint32_t kScreenPatternGen = 0x00A00000;
inline constexpr uint32_t kGamma10BitValue = 0x00D12000;
inline constexpr uint32_t kGamma12BitValue = 0x00D13000;
inline constexpr uint32_t kTestPattern = 0x01200000;

}  // namespace ORVE_MCUC::fpga
