// Registers of the sending FPGA's bus, by name.
#pragma once

#include <cstdint>

namespace ORVE_MCUC::fpga {

// Feature registers; the store's image of them has the same offsets.
inline constexpr uint32_t kMasterSlavePorts1To4 = 0x18;
inline constexpr uint32_t kRedundancyPorts1To4 = 0x1E;
inline constexpr uint32_t kNetLinkPorts1To4 = 0x1F;
inline constexpr uint32_t kOutputMode = 0x23;
inline constexpr uint32_t kScreenWidth = 0x24;    // pixels, u16
inline constexpr uint32_t kScreenHeight = 0x26;   // pixels, u16
inline constexpr uint32_t kScreenOffsetX = 0x28;  // pixels, u16
inline constexpr uint32_t kScreenOffsetY = 0x2A;
inline constexpr uint32_t kMappedWidth = 0x2C;       // screen width before it is rounded to even
inline constexpr uint32_t kMappingOption = 0x4A;     // cleared by a mapping
inline constexpr uint32_t kScreenDirectionX = 0x91;  // 0xFFFF: the offset goes to the right
inline constexpr uint32_t kScreenDirectionY = 0xAC;
inline constexpr uint32_t kMasterSlavePorts5To8 = 0x98;
inline constexpr uint32_t kBackupMark = 0x9D;
inline constexpr uint32_t kRedundancyPorts5To8 = 0x9E;
inline constexpr uint32_t kNetLinkPorts5To8 = 0x9F;
inline constexpr uint32_t kMasterSlavePorts9To16 = 0x100;
inline constexpr uint32_t kRedundancyPorts9To16 = 0x120;
inline constexpr uint32_t kNetLinkPorts9To16 = 0x126;
inline constexpr uint32_t kFiberLink = 0x1D7;
inline constexpr uint32_t kFiberRedundancy = 0x1DA;
inline constexpr uint32_t kOutputEnable = 0x1DE;
inline constexpr uint32_t kFiberToNetStatus = 0x1E0;
inline constexpr uint32_t kOutputWidth = 0x1EC;  // pixels, u16
inline constexpr uint32_t kOutputHeight = 0x1EE;
inline constexpr uint32_t kFiberBelowLink = 0x1F2;  // two bytes a fiber path
inline constexpr uint32_t kOptRedundancy = 0x1F6;

// Settings of the feature image that the FPGA has no register for: its status registers lie there.
inline constexpr uint32_t kSignedOffsetX = 0x1F0;  // pixels, i32
inline constexpr uint32_t kSignedOffsetY = 0x1F4;
inline constexpr uint32_t kOffsetMode = 0x1F8;

inline constexpr uint32_t kMirrorEnd = kSignedOffsetX;  // the image mirrors the registers before

// The registers that a restore and a mapping write in one block.
inline constexpr uint32_t kFeatureFirst = 0x18;
inline constexpr uint32_t kFeatureRestoreLength = 0x1F0 - kFeatureFirst;
inline constexpr uint32_t kFeatureMappingLength = 430;

inline constexpr uint32_t kTestPatternEnable = 0x00100051;
inline constexpr uint32_t kReportEnable = 0x00100070;
inline constexpr uint32_t kReportParameters = 0x00100071;
inline constexpr uint32_t kNumberPorts0To3 = 0x00500000;
inline constexpr uint32_t kNumberCommon = 0x00500100;
inline constexpr uint32_t kNumberPorts4To7 = 0x00501000;
inline constexpr uint32_t kNumberPorts8To11 = 0x00502000;
inline constexpr uint32_t kPositionTables = 0x00600000;  // 4096 bytes a port
inline constexpr uint32_t kGammaTables = 0x00700000;     // one 64 KiB page a colour: red, green, blue
inline constexpr uint32_t kGammaTableStride = 0x00010000;
inline constexpr uint32_t kScreenPatternGen = 0x00A00000;
inline constexpr uint32_t kGamma10BitValue = 0x00D12000;
inline constexpr uint32_t kGamma12BitValue = 0x00D13000;
inline constexpr uint32_t kFiberPortLinks = 0x00F04000;  // two bytes a fiber path
inline constexpr uint32_t kNetPortLinks = 0x00F05100;    // four ports a byte
inline constexpr uint32_t kTestPattern = 0x01200000;

}  // namespace ORVE_MCUC::fpga
