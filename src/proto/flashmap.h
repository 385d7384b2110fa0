// The map of the parameter flash: every address stands here once, under the name of what lies there (byte
// addresses and sizes in bytes). A register space that mirrors flash has a function from register to flash.
#pragma once

#include <cstdint>

#include "proto/registermap.h"

namespace ORVE_MCUC::flash {

inline constexpr uint32_t kBasicHardwarePage = 0x001000;   // 256
inline constexpr uint32_t kSerialNumber = 0x001016;        // 8 raw bytes
inline constexpr uint32_t kBasicHardwareSaved = 0x00101F;  // 1: 0x55 once the page has been saved
inline constexpr uint32_t kFeature = 0xA3B100;             // 512
inline constexpr uint32_t kBackupInfo = 0xB98000;
inline constexpr uint32_t kShortcutConfig = 0xB99000;  // 32; byte 0: LEDConfigStatus
inline constexpr uint32_t kScreenSize = 0xC20000;      // width u32, height u32
inline constexpr uint32_t kCardSize = 0xC20008;        // width u32, height u32
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
inline constexpr uint32_t kScreenChangeCounter = 0xD17000;  // 1
inline constexpr uint32_t kConfigFiles = 0xE00000;

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
static_assert(ofBackupInfo(0x02300010) == 0x00B98010);
static_assert(ofSoftwareTable(0x05060000) == 0x00C90000);
static_assert(ofConfigFile(0x0F800000) == 0x00D14000 && ofConfigFile(0x0F000000) == 0x00E00000);

}  // namespace ORVE_MCUC::flash
