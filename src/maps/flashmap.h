// The map of the parameter flash: every address stands here once, under the name of what lies there (byte
// addresses and sizes in bytes). A register space that mirrors flash has a function from register to flash.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "maps/registermap.h"
#include "maps/tables.h"

namespace ORVE_MCUC::flash {

inline constexpr uint32_t kBasicHardwarePage = 0x001000;
inline constexpr uint32_t kBasicHardwareSize = 256;
inline constexpr uint32_t kSerialNumber = 0x001016;
inline constexpr uint32_t kBasicHardwareSaved = 0x00101F;
inline constexpr uint32_t kDhcp = 0x00201A;
inline constexpr uint32_t kGenerator = 0x00202A;
inline constexpr uint32_t kMode3D = 0x002400;
inline constexpr uint32_t kLauncher3D = 0x002407;
inline constexpr uint32_t kLauncher3DColour = 0x002408;
inline constexpr uint32_t kScenes = 0x003000;
inline constexpr uint32_t kLauncher3DEnd = kScenes;
inline constexpr uint32_t kLauncher3DCopy = 0x00F557;
inline constexpr uint32_t kLauncher3DColourCopy = 0x00F558;
inline constexpr uint32_t kInputModes = 0x200000;
inline constexpr uint32_t kLauncher3DCopyEnd = kInputModes;
inline constexpr uint32_t kBasicHardwareCopy = 0xA01000;
inline constexpr uint32_t kFeature = 0xA3B100;
inline constexpr uint32_t kPositionTables = 0xA3C000;
inline constexpr uint32_t kNumberTable = 0xA5C000;
inline constexpr uint32_t kRole = 0xA60010;
inline constexpr uint32_t kGlobalPara = 0xA61000;
inline constexpr uint32_t kFormatTag = 0xB88000;
inline constexpr uint32_t kBrightnessFile = 0xB8B000;
inline constexpr uint32_t kBackupInfo = 0xB98000;
inline constexpr uint32_t kShortcutConfig = 0xB99000;
inline constexpr uint32_t kShortcutLayout = 0xB99016;  // rows, columns, low byte of the cards per port
inline constexpr uint32_t kScreenSize = 0xC20000;
inline constexpr uint32_t kCardSize = 0xC20008;
inline constexpr uint32_t kShortcutForVsp = 0xC20030;
inline constexpr uint32_t kScreenPara = 0xC20040;
inline constexpr uint32_t kHdr = 0xC21000;
inline constexpr uint32_t kSoftwareTable = 0xC30000;
inline constexpr uint32_t kRoleTable = 0xC95000;
inline constexpr uint32_t kGamma10BitTags = 0xD00000;
inline constexpr uint32_t kGamma10BitTables = 0xD03000;
inline constexpr uint32_t kGamma12BitTags = 0xD09000;
inline constexpr uint32_t kGamma12BitTables = 0xD0C000;
inline constexpr uint32_t kGammaTagStride = 0x1000;
inline constexpr uint32_t kGammaTableSize = 0x2000;
inline constexpr uint32_t kGamma10BitValue = 0xD12000;
inline constexpr uint32_t kGamma12BitValue = 0xD13000;
inline constexpr uint32_t kDeviceNameFile = 0xD14000;
inline constexpr uint32_t kWarmUp = kDeviceNameFile;  // the two share their first bytes
inline constexpr uint32_t kCardBrightness = 0xD15000;
inline constexpr uint32_t kScreenChangeCounter = 0xD17000;
inline constexpr uint32_t kConfigFiles = 0xE00000;

// The areas, by address. A field lies inside the area before it; areas do not overlap.
struct Area {
  uint32_t address;
  uint32_t length;  // bytes
  std::string_view name;
  std::string_view holds;
  bool isField = false;

  constexpr uint32_t end() const { return address + length; }
};
inline constexpr bool kField = true;

inline constexpr std::array kAreas{
    Area{kBasicHardwarePage, kBasicHardwareSize, "basic hardware page",
         "identity of the device, as the hardware info space"},
    Area{kSerialNumber, 8, "serial number", "raw bytes, also kept in the environment store", kField},
    Area{kBasicHardwareSaved, 1, "page saved", "0x55 once the page has been saved", kField},
    Area{kDhcp, 1, "DHCP", "network setting that a factory reset keeps"},
    Area{kGenerator, 1, "generator", "whether the internal generator runs; a low delay asks"},
    Area{kMode3D, 1, "3D", "whether the picture is in 3D; a low delay asks"},
    Area{kLauncher3D, 1, "3D launcher mode", "what 3D launchers were told last"},
    Area{kLauncher3DColour, kScenes - kLauncher3DColour, "3D launcher colour",
         "likewise, with room for longer writes"},
    Area{kScenes, 0xB400, "scenes", "parameters of the video daemon"},
    Area{kLauncher3DCopy, 1, "3D launcher mode, copy", "the same again"},
    Area{kLauncher3DColourCopy, kInputModes - kLauncher3DColourCopy, "3D launcher colour, copy", "likewise"},
    Area{kInputModes, 72, "input modes", "what the inputs were set to last"},
    Area{kBasicHardwareCopy, kBasicHardwareSize, "basic hardware page, copy",
         "written by a save of everything"},
    Area{kFeature, 512, "feature parameters", "image of the feature space"},
    Area{kPositionTables, 0xA000, "position tables", "places of the cards, 4096 bytes for each of ten ports"},
    Area{kNumberTable, 768, "number table", "cards behind each port"},
    Area{kRole, 1, "role", "1: the device is a slave"},
    Area{kGlobalPara, 512, "parameter table", "first half of the table of calculations"},
    Area{kFormatTag, 4, "format tag", "39 F6 A5 5A: the flash has this layout"},
    Area{kBrightnessFile, 5120, "brightness file", "configuration of the brightness control"},
    Area{kBackupInfo, 0x1000, "backup info", "what peers keep in the backup info space"},
    Area{kShortcutConfig, 0x1000, "screen configuration", "the configuration that was submitted last"},
    Area{kShortcutConfig, 32, "smart record", "byte 0: what configured the screen", kField},
    Area{kShortcutLayout, 3, "rows, columns, cards", "what a factory reset sets to 1", kField},
    Area{kScreenSize, 8, "output size", "width u32, height u32, pixels"},
    Area{kCardSize, 8, "receiving card size", "width u32, height u32, pixels"},
    Area{kShortcutForVsp, 4, "screen configuration for VSP", "mode, rows, columns, cards per port"},
    Area{kScreenPara, 15, "screen parameters", "first bytes of the screen info space"},
    Area{kHdr, 0x1000, "HDR parameters", "image of the human-computer interaction space; HDR record at 0"},
    Area{kSoftwareTable, 0x70000, "software tables", "tables of the configuration tools"},
    Area{kRoleTable, 4, "role table", "cleared when the role changes", kField},
    Area{kGamma10BitTags, 3 * kGammaTagStride, "10-bit gamma tags",
         "a page a colour: 39 F6 A5 5A when valid"},
    Area{kGamma10BitTables, 3 * kGammaTableSize, "10-bit gamma tables", "red, green, blue"},
    Area{kGamma12BitTags, 3 * kGammaTagStride, "12-bit gamma tags",
         "a page a colour: 39 F6 A5 5A when valid"},
    Area{kGamma12BitTables, 3 * kGammaTableSize, "12-bit gamma tables", "red, green, blue"},
    Area{kGamma10BitValue, 1, "10-bit gamma value", "what the tools made the tables from"},
    Area{kGamma12BitValue, 1, "12-bit gamma value", "likewise"},
    Area{kDeviceNameFile, 0x1000, "device names", "file of the renamed devices"},
    Area{kWarmUp, 6, "display warm-up", "mode, time, 39 F6 A5 5A", kField},
    Area{kCardBrightness, 6, "card brightness", "byte 0: brightness that the receiving cards were told last"},
    Area{kScreenChangeCounter, 1, "screen changes", "counts the changes of the output size, 0 after a start"},
    Area{kConfigFiles, 0x800000, "configuration files", "of the receiving cards, with their header"},
};

constexpr bool areasAreSound() {
  uint32_t begin = 0;
  uint32_t end = 0;  // of the last area that is no field
  for (const auto& area : kAreas) {
    if (area.length == 0 || area.name.empty() || area.end() > 0x02000000) return false;
    if (area.isField ? area.address < begin || area.end() > end : area.address < end) return false;
    if (area.isField) continue;
    begin = area.address;
    end = area.end();
  }
  return allDiffer(kAreas, &Area::name);
}
static_assert(areasAreSound(), "areas of the flash overlap, or a field lies outside its area");

constexpr uint32_t ofFeature(uint32_t fpgaRegister) {
  return kFeature + fpgaRegister;
}
constexpr uint32_t ofShortcutConfig(uint32_t registerAddress) {
  return registerAddress - reg::kShortcutConfigScreen + kShortcutConfig;
}
constexpr uint32_t ofBrightness(uint32_t registerAddress) {
  return registerAddress - reg::kBrightness + kBrightnessFile;
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

// The windows of the register spaces: register base + n is flash + n. A window may reach over several areas.
struct Window {
  uint32_t base;
  uint32_t flash;
  uint32_t length;
};
inline constexpr std::array kWindows{
    Window{reg::kHwBasicInfo, kBasicHardwarePage, kBasicHardwareSize},
    Window{reg::kFeature, kFeature, 512},
    Window{reg::kHCInteraction, kHdr, 512},
    Window{reg::kBackupInfo, ofBackupInfo(reg::kBackupInfo), 0x10000},
    Window{reg::kShortcutConfigScreen, ofShortcutConfig(reg::kShortcutConfigScreen), 0x10000},
    Window{reg::kScanBoardPosition, kPositionTables, 0xA000},
    Window{reg::kFunCardPortNumber, kNumberTable, 768},
    Window{reg::kSoftwareTable, ofSoftwareTable(reg::kSoftwareTable), 0x10000},
    Window{reg::kSoftwareTableUpper, ofSoftwareTable(reg::kSoftwareTableUpper), 0x10000},
    Window{reg::kBrightness, kBrightnessFile, 5120},
    Window{reg::kRVConfigFile, ofConfigFile(reg::kRVConfigFile), 0x800000},
    Window{reg::kRVConfigFile | reg::kDeviceNameFileBit, kDeviceNameFile, 0x800000},
};
static_assert(ascends(kWindows, &Window::base));

}  // namespace ORVE_MCUC::flash
