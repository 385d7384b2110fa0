// The map of the register addresses that peers use: every address stands here once, under its name. The
// router keys a request by its address without the low 16 bits (the low 24 bits in the four widest spaces).
#pragma once

#include <cstdint>

namespace ORVE_MCUC::reg {

inline constexpr uint32_t kHwBasicInfo = 0x00000000;
inline constexpr uint32_t kPluginCardInfo = 0x00010000;
inline constexpr uint32_t kCommand = 0x01000000;
inline constexpr uint32_t kFeature = 0x02000000;
inline constexpr uint32_t kScreenInfoEcho = 0x02100000;
inline constexpr uint32_t kHCInteraction = 0x02200000;
inline constexpr uint32_t kBackupInfo = 0x02300000;
inline constexpr uint32_t kIntelligentBrightness = 0x02400000;
inline constexpr uint32_t kCabinetRotation = 0x02700000;
inline constexpr uint32_t kShortcutConfigScreen = 0x02810000;
inline constexpr uint32_t kScanBoardPosition = 0x03000000;
inline constexpr uint32_t kFunCardPortNumber = 0x03100000;
inline constexpr uint32_t kSoftwareTable = 0x05000000;
inline constexpr uint32_t kSoftwareTableUpper = 0x05060000;
inline constexpr uint32_t kEdid = 0x08000000;
inline constexpr uint32_t kBrightness = 0x0A000000;
inline constexpr uint32_t kRGBGamma = 0x0E000000;      // 16 MiB wide
inline constexpr uint32_t kRVConfigFile = 0x0F000000;  // 16 MiB wide
inline constexpr uint32_t kScreenPatternGen = 0x12010000;
inline constexpr uint32_t kCardProgram = 0x18000000;
inline constexpr uint32_t kCardProgramUpper = 0x18200000;
inline constexpr uint32_t kTestPrint = 0xF0000000;       // 16 MiB wide
inline constexpr uint32_t kTestPrintUpper = 0xF1000000;  // 16 MiB wide

// The feature space has the FPGA's registers under their own addresses.
constexpr uint32_t ofFeature(uint32_t fpgaRegister) {
  return kFeature + fpgaRegister;
}

// Single registers inside the spaces.
inline constexpr uint32_t kReadRateTest = kScanBoardPosition + 0x1EE;
inline constexpr uint32_t kWriteRateTest = kScanBoardPosition + 0x1EF;
inline constexpr uint32_t kHdrType = kHCInteraction + 0x117;
inline constexpr uint32_t kScreenPeakLight = kHCInteraction + 0x118;
inline constexpr uint32_t kAmbientLight = kHCInteraction + 0x11A;
inline constexpr uint32_t kHlgClass = kHCInteraction + 0x129;
inline constexpr uint32_t kWarmUp = kHCInteraction + 0x12C;
inline constexpr uint32_t kLowGrey = kHCInteraction + 0x12E;
inline constexpr uint32_t kPictureQuality = kHCInteraction + 0x13A;
inline constexpr uint32_t kCommunicationMode = kHCInteraction + 0x0C0;
inline constexpr uint32_t kBrightnessControl = kBrightness + 0x0C;
inline constexpr uint32_t kReceivingCardSize = kScreenInfoEcho + 0x06;
inline constexpr uint32_t kVspTrigger = 0x0500FFFF;  // a one-byte read pushes 0xC8 to VSP
inline constexpr uint32_t kRoleTable = 0x05065000;   // the software table's screen tables end here
inline constexpr uint32_t kGamma10BitValue = 0x0E300000;
inline constexpr uint32_t kGamma12BitValue = 0x0E302000;
inline constexpr uint32_t kDeviceNameFileBit = 0x00800000;  // of the configuration-file space

// Registers that only pushes name.
inline constexpr uint32_t kRebootNotice = 0x01000002;
inline constexpr uint32_t kDaemonLoaded = 0x14000000;

// Keys of the router: a 16 MiB space is selected by the top byte, any other by the top half.
inline constexpr uint32_t kWideMask = 0xFF000000;
inline constexpr uint32_t kNarrowMask = 0xFFFF0000;
inline constexpr uint32_t kOffsetMask = 0x0000FFFF;

constexpr bool isWide(uint32_t address) {
  const uint32_t top = address & kWideMask;
  return top == kRGBGamma || top == kRVConfigFile || top == kTestPrint || top == kTestPrintUpper;
}
constexpr uint32_t routerKey(uint32_t address) {
  return address & (isWide(address) ? kWideMask : kNarrowMask);
}

static_assert(routerKey(0x0E123456) == kRGBGamma && routerKey(0x02201234) == kHCInteraction);

}  // namespace ORVE_MCUC::reg
