// Registers of the sending FPGA's bus, by name.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace ORVE_MCUC::fpga {

// Feature registers; the store's image of them has the same offsets.
inline constexpr uint32_t kClock = 0x11;  // year, month, day, hour, minute, second
inline constexpr uint32_t kMasterSlavePorts1To4 = 0x18;
inline constexpr uint32_t kRedundancyPorts1To4 = 0x1E;
inline constexpr uint32_t kNetLinkPorts1To4 = 0x1F;
inline constexpr uint32_t kPowerOnTime = 0x21;
inline constexpr uint32_t kOutputMode = 0x23;
inline constexpr uint32_t kScreenWidth = 0x24;    // pixels, u16
inline constexpr uint32_t kScreenHeight = 0x26;   // pixels, u16
inline constexpr uint32_t kScreenOffsetX = 0x28;  // pixels, u16
inline constexpr uint32_t kScreenOffsetY = 0x2A;
inline constexpr uint32_t kMappedWidth = 0x2C;    // screen width before it is rounded to even
inline constexpr uint32_t kMappingOption = 0x4A;  // cleared by a mapping
inline constexpr uint32_t kProbe = 0x4B;          // a one-byte read is answered 0: the card is there
inline constexpr uint32_t kLowDelay = 0x74;
inline constexpr uint32_t kScreenDirectionX = 0x91;  // 0xFFFF: the offset goes to the right
inline constexpr uint32_t kScreenDirectionY = 0xAC;
inline constexpr uint32_t kMasterSlavePorts5To8 = 0x98;
inline constexpr uint32_t kCorrection = 0x9C;
inline constexpr uint32_t kBackupMark = 0x9D;
inline constexpr uint8_t kMasterMark = 0x5A;  // its values
inline constexpr uint8_t kSlaveMark = 0xA5;
inline constexpr uint8_t kNoMark = 0xFF;
inline constexpr uint32_t kRedundancyPorts5To8 = 0x9E;
inline constexpr uint32_t kNetLinkPorts5To8 = 0x9F;
inline constexpr uint32_t kFlashSync = 0xD4;
inline constexpr uint32_t kMasterSlavePorts9To16 = 0x100;
inline constexpr uint32_t kRedundancyPorts9To16 = 0x120;
inline constexpr uint32_t kNetLinkPorts9To16 = 0x126;
inline constexpr uint32_t kInputSource = 0x1A5;
inline constexpr uint32_t kFiberLink = 0x1D7;
inline constexpr uint32_t kBoardOption = 0x1D8;
inline constexpr uint32_t kFiberRedundancy = 0x1DA;
inline constexpr uint32_t kOutputEnable = 0x1DE;
inline constexpr uint8_t kOutputRestored = 0x5A;  // in the image only: a restore has closed it
inline constexpr uint32_t kFiberToNetEnable = 0x1DF;
inline constexpr uint32_t kFiberToNetStatus = 0x1E0;
inline constexpr uint32_t kFastCorrection = 0x1E9;
inline constexpr uint32_t kHdrEnable = 0x1EA;
inline constexpr uint32_t kOutputWidth = 0x1EC;  // pixels, u16
inline constexpr uint32_t kOutputHeight = 0x1EE;
inline constexpr uint32_t kFiberBelowLink = 0x1F2;  // two bytes a fiber path
inline constexpr uint32_t kOptRedundancy = 0x1F6;

// Window of an output port: width, height, X and Y, each u16 in pixels, and one byte that belongs to the
// FPGA.
inline constexpr uint32_t kWindowSize = 9;
inline constexpr uint32_t kWindowHeightAt = 2;
inline constexpr uint32_t kWindowXAt = 4;
inline constexpr uint32_t kWindowYAt = 6;
constexpr uint32_t portWindow(unsigned port) {
  if (port < 4) return 0x51 + kWindowSize * port;
  if (port < 8) return 0xB1 + kWindowSize * (port - 4);
  return 0x131 + kWindowSize * (port - 8);
}
static_assert(portWindow(12) + kWindowXAt == 0x159 && portWindow(7) + kWindowXAt == 0xD0);

// Role of an output port.
inline constexpr uint8_t kMaster = 0x00;
inline constexpr uint8_t kBackup = 0x80;
constexpr uint32_t portRole(unsigned port) {
  if (port < 4) return kMasterSlavePorts1To4 + port;
  if (port < 8) return kMasterSlavePorts5To8 + (port - 4);
  return kMasterSlavePorts9To16 + (port - 8);
}

// The fiber module's state: whether it is there, and which of its links are up.
inline constexpr uint8_t kFiberModuleBits = 0xA0;
inline constexpr uint8_t kFiberLinkBits = 0x0F;

// The copper links of sixteen ports as one word, bit p for port p: a register holds four ports.
inline constexpr std::array<uint32_t, 4> kNetLinks{kNetLinkPorts1To4, kNetLinkPorts5To8, kNetLinkPorts9To16,
                                                   kNetLinkPorts9To16 + 1};
constexpr uint16_t netLinkWord(std::span<const uint8_t, 4> bytes) {
  unsigned word = 0;
  for (unsigned i = 0; i < 4; ++i) word |= (bytes[i] & 0x0FU) << 4 * i;
  return static_cast<uint16_t>(word);
}

// Settings of the feature image that the FPGA has no register for, or a status register.
inline constexpr uint32_t kSerialTimeout = 0x3F;   // seconds without a heartbeat, see the brightness control
inline constexpr uint32_t kSignedOffsetX = 0x1F0;  // pixels, i32
inline constexpr uint32_t kSignedOffsetY = 0x1F4;
inline constexpr uint32_t kOffsetMode = 0x1F8;

inline constexpr uint32_t kMirrorEnd = kSignedOffsetX;  // the image mirrors the registers before

// The registers that a restore and a mapping write in one block.
inline constexpr uint32_t kFeatureFirst = 0x18;
inline constexpr uint32_t kFeatureRestoreLength = kMirrorEnd - kFeatureFirst;
inline constexpr uint32_t kFeatureMappingLength = 0x1C6 - kFeatureFirst;

// Runs of registers in which the hardware tells its state: what flash holds of them is the last run's.
struct Run {
  uint32_t first;
  std::size_t length;
};
inline constexpr Run kHardwareStatus[] = {
    {kRedundancyPorts1To4, 2}, {kRedundancyPorts5To8, 2}, {kRedundancyPorts9To16, 2},
    {kNetLinkPorts9To16, 2},   {kFiberLink, 1},           {kFiberToNetStatus, 2}};

inline constexpr uint32_t kTestPatternEnable = 0x00100051;
inline constexpr uint32_t kReportEnable = 0x00100070;
inline constexpr uint32_t kReportParameters = 0x00100071;
inline constexpr uint32_t kNumberPorts0To3 = 0x00500000;
inline constexpr uint32_t kNumberCommon = 0x00500100;
inline constexpr uint32_t kNumberPorts4To7 = 0x00501000;
inline constexpr uint32_t kNumberPorts8To11 = 0x00502000;
inline constexpr uint32_t kNumberPorts12To15 = 0x00503000;
inline constexpr uint32_t kPositionTables = 0x00600000;  // 4096 bytes a port
inline constexpr uint32_t kGammaTables = 0x00700000;     // one 64 KiB page a colour: red, green, blue
inline constexpr uint32_t kGammaTableStride = 0x00010000;
inline constexpr uint32_t kScreenPatternGen = 0x00A00000;
inline constexpr uint32_t kBitDepthMark = 0x00500109;       // bit depth, or that an HDR curve is loaded
inline constexpr uint32_t kConversion = 0x00D00000;         // coefficients, full-range RGB to full-range RGB
inline constexpr uint32_t kLimitedConversion = 0x00D00040;  // limited-range YUV to full-range RGB
inline constexpr uint32_t kGamma10BitValue = 0x00D12000;
inline constexpr uint32_t kGamma12BitValue = 0x00D13000;
inline constexpr uint32_t kFiberPortLinks = 0x00F04000;  // two bytes a fiber path
inline constexpr uint32_t kNetPortLinks = 0x00F05100;    // four ports a byte
inline constexpr uint32_t kTestPattern = 0x01200000;

// Registers that pass a whole packet on to the cards: first the port, then the packet, then the port again.
inline constexpr uint32_t kPacketPort = 0x00000100;
inline constexpr uint32_t kPacket = 0x00000400;
inline constexpr uint32_t kComponentPacketPort = 0x00100000;
inline constexpr uint32_t kComponentPacket = 0x00300000;

}  // namespace ORVE_MCUC::fpga
