// The register spaces: one row for each base address, in the order of the router's table. Router, access
// checks, the client's names and docs/registers.md are all made from these rows. Texts are exact,
// misspellings included: they appear in logs and in the diagnostics that service tools print.
#pragma once

#include <algorithm>
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
  std::string_view owner;  // the space in log lines; one that owns two bases has two rows
  const char* name;        // in the router's table
  const char* text;
  OffsetRow offset;          // of the space's own table
  std::string_view title;    // in the words of the client and the docs
  std::string_view reading;  // what any read does beyond replying
  int32_t serves;            // reads that answer with data, writes that do something
};

inline constexpr uint32_t kNarrow = 0x00010000;
inline constexpr uint32_t kWide = 0x01000000;

constexpr OffsetRow rowOf(uint32_t key, const char* name, const char* text, Fcmd_len limits) {
  return {key, name, text, limits};
}
constexpr SpaceRow narrow(uint32_t base, std::string_view owner, const char* name, const char* text,
                          OffsetRow offset, std::string_view title, int32_t serves = kReadWrite,
                          std::string_view reading = "") {
  return {base, kNarrow, owner, name, text, offset, title, reading, serves};
}
constexpr SpaceRow wide(uint32_t base, std::string_view owner, const char* name, const char* text,
                        OffsetRow offset, std::string_view title, std::string_view reading = "") {
  return {base, kWide, owner, name, text, offset, title, reading, kReadWrite};
}

inline constexpr std::array kSpaces{
    narrow(reg::kHwBasicInfo, "Addr_HwBasicInfoRegister", "factory", "factory hardware register",
           rowOf(reg::kHwBasicInfo, "HwInfo", "Hardware Basic Infomation", {2, 512}), "hardware info"),
    narrow(reg::kPluginCardInfo, "Addr_PluginCardInfoRegister", "plug in card info", "plug in card register",
           rowOf(reg::kPluginCardInfo, "plugin card info", "plugin card info register", {1, 512}),
           "plug-in card info", 0),
    narrow(reg::kCommand, "Addr_CMDRegister", "command", "command register",
           /* a row for each command: maps/commands.h */ {}, "command", kMayWrite),
    narrow(reg::kFeature, "Addr_FeatureRegister", "feature", "feature register",
           rowOf(reg::kFeature, "feature info", "feature info register", {1, 1024}), "feature", kReadWrite,
           "takes registers that end behind 0x1EF from the FPGA into the image"),
    narrow(reg::kScreenInfoEcho, "Addr_ScreenInfoEchoRegister", "screen info echo", "screen info echo",
           rowOf(reg::kScreenInfoEcho, "screen info echo", "screen info echo register", {1, 1024}),
           "screen info echo", kReadWrite, "asks the receiving cards for their size"),
    narrow(reg::kHCInteraction, "Addr_HCInteractionRegister", "human-computer interaction info",
           "human-computer interaction info register",
           rowOf(reg::kHCInteraction, "human-computer interaction info",
                 "human-computer interaction info register", {1, 512}),
           "human-computer interaction"),
    narrow(reg::kBackupInfo, "Addr_BackupInfoRegister", "backup", "backup info register",
           rowOf(reg::kBackupInfo, "backup info", "backup info register", {1, 512}), "backup info"),
    narrow(reg::kIntelligentBrightness, "Addr_IntelligentBrightnessRegister", "Intelligent brightness",
           "Intelligent brightness sent by screen register",
           rowOf(reg::kIntelligentBrightness, "intelligent brightness", "intelligent brightness register",
                 {1, 512}),
           "intelligent brightness", kMayWrite),
    narrow(reg::kCabinetRotation, "Addr_CabinetRotationRegister", "cabinet rotation",
           "cabinet rotation register",
           rowOf(reg::kCabinetRotation, "cabinet rotation", "cabinet rotation register", {1, 69632}),
           "cabinet rotation", 0),
    narrow(reg::kShortcutConfigScreen, "Addr_ShortcutConfigScreenRegister", "shortcut config screen",
           "shortcut config screen register",
           rowOf(reg::kShortcutConfigScreen, "shortcut config screen info",
                 "shortcut config screen info register", {1, 1500}),
           "shortcut screen configuration"),
    narrow(reg::kScanBoardPosition, "Addr_CoordinateScanBoardRegister", "netscanborad",
           "network scanborad position register",
           rowOf(reg::kScanBoardPosition, "pos port", "Position of Net Port", {0, 65537}),
           "scan board position"),
    narrow(reg::kFunCardPortNumber, "Addr_NumberFunCardPortRegister", "netborad",
           "network scanborad register",
           rowOf(reg::kFunCardPortNumber, "number of function card port", "number of function card port",
                 {0, 2048}),
           "function card port number"),
    narrow(reg::kSoftwareTable, "Addr_SoftwareTableRegister", "softwarespace", "software space register",
           rowOf(reg::kSoftwareTable, "software table info", "software table info register", {1, 32768}),
           "software table"),
    narrow(reg::kSoftwareTableUpper, "Addr_SoftwareTableRegister", "softwarespace", "software space register",
           rowOf(reg::kSoftwareTableUpper, "software table info", "software table info register", {1, 32768}),
           "software table, upper part"),
    narrow(reg::kEdid, "Addr_EDIDSpaceRegister", "edid", "edid space register",
           rowOf(reg::kEdid, "edid space info", "edid space info register", {0, 2048}), "EDID"),
    narrow(reg::kBrightness, "Addr_HardWareBrightnessAdjust", "brightness", "brightness space register",
           rowOf(reg::kBrightness, "lightAdjustType", "lightAdjustType", {1, 512}), "brightness"),
    wide(reg::kTestPrint, "Addr_TestPrinfRegister", "testprintf", "testprintf Infomation",
         rowOf(reg::kTestPrint, "testprintf", "testprintf Infomation", {1, 2048}), "FPGA bus",
         "reads the bus, whatever the register does when it is read"),
    wide(reg::kTestPrintUpper, "Addr_TestPrinfRegister", "testprintf", "testprintf Infomation", {},
         "FPGA bus, upper part", "reads the bus, whatever the register does when it is read"),
    wide(reg::kRGBGamma, "Addr_RGBGammaRegister", "RGB Gamma", "RGB Gamma register",
         rowOf(reg::kRGBGamma, "RGBGamma info", "RGBGamma info register", {1, 1024}), "RGB gamma"),
    narrow(
        reg::kScreenPatternGen, "Addr_ScreenPatternGenregister", "ScreenPatternGen info",
        "ScreenPatternGen info register",
        rowOf(reg::kScreenPatternGen, "ScreenPatternGen info", "ScreenPatternGen info register", {0, 2048}),
        "screen pattern generator", kReadWrite, "takes the registers from the FPGA into the image"),
    wide(
        reg::kRVConfigFile, "Addr_RVConfigFileSpace", "RVConfig File Space info",
        "RVConfig File Space info register",
        rowOf(reg::kRVConfigFile, "RVConfig File Space info", "RVConfig File Space info register", {0, 2048}),
        "configuration files"),
    narrow(reg::kCardProgram, "Addr_CardProgmaSpaceRegister", "cardprogspace",
           "sendcard programm space register",
           rowOf(0x0000, "sendcard program update", "sendcard program update", {256, 4096}), "card program",
           kMayRead),
    narrow(reg::kCardProgramUpper, "Addr_CardProgmaSpaceRegister", "ccardprogspace",
           "csendcard programm space register",
           rowOf(0x1000, "sendcard program update", "sendcard program update", {256, 4096}),
           "card program, upper part", kMayRead),
};

// The row of a base address; null when it is no base.
constexpr const SpaceRow* findSpace(uint32_t base) {
  for (const auto& row : kSpaces) {
    if (row.base == base) return &row;
  }
  return nullptr;
}

constexpr bool isSpace(uint32_t base) {
  return std::ranges::find(kSpaces, base, &SpaceRow::base) != kSpaces.end();
}

// The row of the space at a base, which must be one: anything else does not compile.
constexpr const SpaceRow& spaceRow(uint32_t base) {
  for (const auto& row : kSpaces) {
    if (row.base == base) return row;
  }
  throw "no space has this base";
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
static_assert(spacesAreSound());

}  // namespace ORVE_MCUC
