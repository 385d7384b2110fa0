// The register spaces: one row for each base address, in the order of the router's table. Router, access
// checks, the client's names and docs/registers.md are all made from these rows. Texts are exact,
// misspellings included: they appear in logs and in the diagnostics that service tools print.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "maps/registermap.h"
#include "maps/tables.h"

namespace ORVE_MCUC {

// Permitted length of a request's data in bytes, both ends included.
struct Fcmd_len {
  int32_t cmdLenMin = 1;
  int32_t cmdLenMax = 512;
};

// Kinds of access, as bits of a row's mask.
inline constexpr int32_t kMayRead = 0x01;
inline constexpr int32_t kMayWrite = 0x10;
inline constexpr int32_t kReadWrite = kMayRead | kMayWrite;

// A row of a space's own table.
struct OffsetRow {
  uint32_t key = 0;            // what the space makes of an address
  const char* name = nullptr;  // null: no row
  const char* text = nullptr;
  Fcmd_len limits{};
  int32_t access = kReadWrite;
};

struct SpaceRow {
  uint32_t base;
  uint32_t width;          // bytes of address range, a power of two
  std::string_view owner;  // the space; one that owns two bases has two rows
  const char* name;        // in the router's table
  const char* text;
  OffsetRow offset;          // of the space's own table
  std::string_view title;    // in the words of the client and the docs
  std::string_view reading;  // what a read does beyond replying; empty: nothing
};

inline constexpr uint32_t kNarrow = 0x00010000;
inline constexpr uint32_t kWide = 0x01000000;

inline constexpr std::array kSpaces{
    SpaceRow{reg::kHwBasicInfo,
             kNarrow,
             "Addr_HwBasicInfoRegister",
             "factory",
             "factory hardware register",
             {reg::kHwBasicInfo, "HwInfo", "Hardware Basic Infomation", {2, 512}},
             "hardware info",
             ""},
    SpaceRow{reg::kPluginCardInfo,
             kNarrow,
             "Addr_PluginCardInfoRegister",
             "plug in card info",
             "plug in card register",
             {reg::kPluginCardInfo, "plugin card info", "plugin card info register", {1, 512}},
             "plug-in card info",
             ""},
    SpaceRow{reg::kCommand,
             kNarrow,
             "Addr_CMDRegister",
             "command",
             "command register",
             {},  // a row for each command: maps/commands.h
             "command",
             ""},
    SpaceRow{reg::kFeature,
             kNarrow,
             "Addr_FeatureRegister",
             "feature",
             "feature register",
             {reg::kFeature, "feature info", "feature info register", {1, 1024}},
             "feature",
             "takes registers that end behind 0x1EF from the FPGA into the image"},
    SpaceRow{reg::kScreenInfoEcho,
             kNarrow,
             "Addr_ScreenInfoEchoRegister",
             "screen info echo",
             "screen info echo",
             {reg::kScreenInfoEcho, "screen info echo", "screen info echo register", {1, 1024}},
             "screen info echo",
             "asks the receiving cards for their size"},
    SpaceRow{reg::kHCInteraction,
             kNarrow,
             "Addr_HCInteractionRegister",
             "human-computer interaction info",
             "human-computer interaction info register",
             {reg::kHCInteraction,
              "human-computer interaction info",
              "human-computer interaction info register",
              {1, 512}},
             "human-computer interaction",
             ""},
    SpaceRow{reg::kBackupInfo,
             kNarrow,
             "Addr_BackupInfoRegister",
             "backup",
             "backup info register",
             {reg::kBackupInfo, "backup info", "backup info register", {1, 512}},
             "backup info",
             ""},
    SpaceRow{
        reg::kIntelligentBrightness,
        kNarrow,
        "Addr_IntelligentBrightnessRegister",
        "Intelligent brightness",
        "Intelligent brightness sent by screen register",
        {reg::kIntelligentBrightness, "intelligent brightness", "intelligent brightness register", {1, 512}},
        "intelligent brightness",
        ""},
    SpaceRow{reg::kCabinetRotation,
             kNarrow,
             "Addr_CabinetRotationRegister",
             "cabinet rotation",
             "cabinet rotation register",
             {reg::kCabinetRotation, "cabinet rotation", "cabinet rotation register", {1, 69632}},
             "cabinet rotation",
             ""},
    SpaceRow{reg::kShortcutConfigScreen,
             kNarrow,
             "Addr_ShortcutConfigScreenRegister",
             "shortcut config screen",
             "shortcut config screen register",
             {reg::kShortcutConfigScreen,
              "shortcut config screen info",
              "shortcut config screen info register",
              {1, 1500}},
             "shortcut screen configuration",
             ""},
    SpaceRow{reg::kScanBoardPosition,
             kNarrow,
             "Addr_CoordinateScanBoardRegister",
             "netscanborad",
             "network scanborad position register",
             {reg::kScanBoardPosition, "pos port", "Position of Net Port", {0, 65537}},
             "scan board position",
             ""},
    SpaceRow{
        reg::kFunCardPortNumber,
        kNarrow,
        "Addr_NumberFunCardPortRegister",
        "netborad",
        "network scanborad register",
        {reg::kFunCardPortNumber, "number of function card port", "number of function card port", {0, 2048}},
        "function card port number",
        ""},
    SpaceRow{reg::kSoftwareTable,
             kNarrow,
             "Addr_SoftwareTableRegister",
             "softwarespace",
             "software space register",
             {reg::kSoftwareTable, "software table info", "software table info register", {1, 32768}},
             "software table",
             ""},
    SpaceRow{reg::kSoftwareTableUpper,
             kNarrow,
             "Addr_SoftwareTableRegister",
             "softwarespace",
             "software space register",
             {reg::kSoftwareTableUpper, "software table info", "software table info register", {1, 32768}},
             "software table, upper part",
             ""},
    SpaceRow{reg::kEdid,
             kNarrow,
             "Addr_EDIDSpaceRegister",
             "edid",
             "edid space register",
             {reg::kEdid, "edid space info", "edid space info register", {0, 2048}},
             "EDID",
             ""},
    SpaceRow{reg::kBrightness,
             kNarrow,
             "Addr_HardWareBrightnessAdjust",
             "brightness",
             "brightness space register",
             {reg::kBrightness, "lightAdjustType", "lightAdjustType", {1, 512}},
             "brightness",
             ""},
    SpaceRow{reg::kTestPrint,
             kWide,
             "Addr_TestPrinfRegister",
             "testprintf",
             "testprintf Infomation",
             {reg::kTestPrint, "testprintf", "testprintf Infomation", {1, 2048}},
             "FPGA bus",
             "reads the bus, whatever the register does when it is read"},
    SpaceRow{reg::kTestPrintUpper,
             kWide,
             "Addr_TestPrinfRegister",
             "testprintf",
             "testprintf Infomation",
             {},
             "FPGA bus, upper part",
             "reads the bus, whatever the register does when it is read"},
    SpaceRow{reg::kRGBGamma,
             kWide,
             "Addr_RGBGammaRegister",
             "RGB Gamma",
             "RGB Gamma register",
             {reg::kRGBGamma, "RGBGamma info", "RGBGamma info register", {1, 1024}},
             "RGB gamma",
             ""},
    SpaceRow{reg::kScreenPatternGen,
             kNarrow,
             "Addr_ScreenPatternGenregister",
             "ScreenPatternGen info",
             "ScreenPatternGen info register",
             {reg::kScreenPatternGen, "ScreenPatternGen info", "ScreenPatternGen info register", {0, 2048}},
             "screen pattern generator",
             "takes the registers from the FPGA into the image"},
    SpaceRow{reg::kRVConfigFile,
             kWide,
             "Addr_RVConfigFileSpace",
             "RVConfig File Space info",
             "RVConfig File Space info register",
             {reg::kRVConfigFile, "RVConfig File Space info", "RVConfig File Space info register", {0, 2048}},
             "configuration files",
             ""},
    SpaceRow{reg::kCardProgram,
             kNarrow,
             "Addr_CardProgmaSpaceRegister",
             "cardprogspace",
             "sendcard programm space register",
             {0x0000, "sendcard program update", "sendcard program update", {256, 4096}},
             "card program",
             ""},
    SpaceRow{reg::kCardProgramUpper,
             kNarrow,
             "Addr_CardProgmaSpaceRegister",
             "ccardprogspace",
             "csendcard programm space register",
             {0x1000, "sendcard program update", "sendcard program update", {256, 4096}},
             "card program, upper part",
             ""},
};

// The row of a base address; null when it is no base.
constexpr const SpaceRow* findSpace(uint32_t base) {
  for (const auto& row : kSpaces) {
    if (row.base == base) return &row;
  }
  return nullptr;
}

// The row of the space at a base, which must be one: anything else does not compile.
consteval const SpaceRow& spaceRow(uint32_t base) {
  const SpaceRow* row = findSpace(base);
  if (row == nullptr) throw "no space has this base";
  return *row;
}

// The first base of the space that owns a row.
constexpr uint32_t firstBase(const SpaceRow& row) {
  for (const auto& other : kSpaces) {
    if (other.owner == row.owner) return other.base;
  }
  return row.base;
}

constexpr bool spaceIsSound(const SpaceRow& row) {
  const bool aligned = row.base % row.width == 0 && reg::isWide(row.base) == (row.width == kWide);
  const bool named = !row.owner.empty() && row.name != nullptr && row.text != nullptr && !row.title.empty();
  const bool limited =
      row.offset.limits.cmdLenMin >= 0 && row.offset.limits.cmdLenMin <= row.offset.limits.cmdLenMax;
  const bool accessible = (row.offset.access & kReadWrite) != 0 && (row.offset.access & ~kReadWrite) == 0;
  return aligned && named && limited && accessible;
}
constexpr bool spacesAreSound() {
  for (const auto& row : kSpaces) {
    if (!spaceIsSound(row) || reg::routerKey(row.base) != row.base) return false;
  }
  return allDiffer(kSpaces, &SpaceRow::base) && allDiffer(kSpaces, &SpaceRow::title);
}
static_assert(spacesAreSound() && kSpaces.size() == 23);

}  // namespace ORVE_MCUC
