// The map of the parameter flash: every address stands here once, under the name of what lies there (byte
// addresses and sizes in bytes). A register space that mirrors flash has a function from register to flash.
#pragma once

#include <cstdint>

#include "maps/registermap.h"

namespace ORVE_MCUC::flash {

inline constexpr uint32_t kBasicHardwarePage = 0x001000;   // 256
inline constexpr uint32_t kSerialNumber = 0x001016;        // 8 raw bytes
inline constexpr uint32_t kBasicHardwareSaved = 0x00101F;  // 1: 0x55 once the page has been saved
inline constexpr uint32_t kLauncher3D = 0x002407;          // what 3D launchers were told last, in two copies
inline constexpr uint32_t kLauncher3DColour = 0x002408;
inline constexpr uint32_t kLauncher3DEnd = 0x003000;  // where other parameters begin
inline constexpr uint32_t kLauncher3DCopy = 0x00F557;
inline constexpr uint32_t kLauncher3DColourCopy = 0x00F558;
inline constexpr uint32_t kLauncher3DCopyEnd = 0x200000;
inline constexpr uint32_t kInputModes = 0x200000;         // 72: what the inputs were set to last
inline constexpr uint32_t kBasicHardwareCopy = 0xA01000;  // 256
inline constexpr uint32_t kFeature = 0xA3B100;            // 512
inline constexpr uint32_t kPositionTables = 0xA3C000;     // 40960
inline constexpr uint32_t kNumberTable = 0xA5C000;        // 768
inline constexpr uint32_t kRole = 0xA60010;               // 1
inline constexpr uint32_t kGlobalPara = 0xA61000;         // 512
inline constexpr uint32_t kFormatTag = 0xB88000;          // 4
inline constexpr uint32_t kBackupInfo = 0xB98000;
inline constexpr uint32_t kShortcutConfig = 0xB99000;  // 32; byte 0: LEDConfigStatus
inline constexpr uint32_t kScreenSize = 0xC20000;      // width u32, height u32
inline constexpr uint32_t kCardSize = 0xC20008;        // width u32, height u32
inline constexpr uint32_t kShortcutForVsp = 0xC20030;  // mode, rows, columns, cards per port
inline constexpr uint32_t kScreenPara = 0xC20040;      // 15
inline constexpr uint32_t kSoftwareTable = 0xC30000;
inline constexpr uint32_t kGamma10BitTags = 0xD00000;    // one page a colour, 4-byte tag each
inline constexpr uint32_t kGamma10BitTables = 0xD03000;  // 8192 a colour
inline constexpr uint32_t kGamma12BitTags = 0xD09000;
inline constexpr uint32_t kGamma12BitTables = 0xD0C000;
inline constexpr uint32_t kGammaTagStride = 0x1000;
inline constexpr uint32_t kGammaTableSize = 0x2000;
inline constexpr uint32_t kGamma10BitValue = 0xD12000;  // 1
inline constexpr uint32_t kGamma12BitValue = 0xD13000;  // 1
inline constexpr uint32_t kDeviceNameFile = 0xD14000;
inline constexpr uint32_t kCardBrightness = 0xD15000;       // 1
inline constexpr uint32_t kScreenChangeCounter = 0xD17000;  // 1
inline constexpr uint32_t kConfigFiles = 0xE00000;

constexpr uint32_t ofFeature(uint32_t fpgaRegister) {
  return kFeature + fpgaRegister;
}
constexpr uint32_t ofShortcutConfig(uint32_t registerAddress) {
  return registerAddress - reg::kShortcutConfigScreen + kShortcutConfig;
}
constexpr uint32_t ofBackupInfo(uint32_t registerAddress) {
  return registerAddress - reg::kBackupInfo + kBackupInfo;
}
constexpr uint32_t ofSoftwareTable(uint32_t registerAddress) {
  return registerAddress - reg::kSoftwareTable + kSoftwareTable;
}
constexpr uint32_t ofConfigFile(uint32_t registerAddress) {
  return (registerAddress & reg::kDeviceNameFileBit) != 0
             ? registerAddress - (reg::kRVConfigFile | reg::kDeviceNameFileBit) + kDeviceNameFile
             : registerAddress - reg::kRVConfigFile + kConfigFiles;
}
static_assert(ofShortcutConfig(0x02810000) == 0x02810000 - 0x1C77000);
static_assert(ofBackupInfo(0x02300010) == 0x00B98010);
static_assert(ofSoftwareTable(0x05060000) == 0x00C90000);
static_assert(ofConfigFile(0x0F800000) == 0x00D14000 && ofConfigFile(0x0F000000) == 0x00E00000);

}  // namespace ORVE_MCUC::flash
