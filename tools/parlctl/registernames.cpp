#include "registernames.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "maps/fpgamap.h"
#include "maps/registermap.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
namespace reg = ORVE_MCUC::reg;

struct Name {
  uint32_t address;
  std::string_view name;
};

// Registers that pushes name, and a few that people look for.
constexpr std::array kRegisters{
    Name{reg::kRebootNotice, "reboot notice"},
    Name{reg::ofFeature(fpga::kMasterSlavePorts1To4), "master/slave of ports 0-3"},
    Name{reg::ofFeature(fpga::kMasterSlavePorts5To8), "master/slave of ports 4-7"},
    Name{reg::ofFeature(fpga::kMasterSlavePorts9To16), "master/slave of ports 8-15"},
    Name{reg::ofFeature(fpga::kRedundancyPorts1To4), "redundancy of ports 0-3"},
    Name{reg::ofFeature(fpga::kNetLinkPorts1To4), "links of ports 0-3"},
    Name{reg::ofFeature(fpga::kRedundancyPorts5To8), "redundancy of ports 4-7"},
    Name{reg::ofFeature(fpga::kNetLinkPorts5To8), "links of ports 4-7"},
    Name{reg::ofFeature(fpga::kRedundancyPorts9To16), "redundancy of ports 8-15"},
    Name{reg::ofFeature(fpga::kNetLinkPorts9To16), "links of ports 8-15"},
    Name{reg::ofFeature(fpga::kFiberLink), "fiber modules"},
    Name{reg::ofFeature(fpga::kFiberRedundancy), "fiber redundancy and copy"},
    Name{reg::ofFeature(fpga::kFiberToNetStatus), "fiber to net, path 1"},
    Name{reg::ofFeature(fpga::kFiberToNetStatus + 1), "fiber to net, path 2"},
    Name{reg::ofFeature(fpga::kFiberBelowLink), "links below fiber 1, ports 0-7"},
    Name{reg::ofFeature(fpga::kFiberBelowLink + 1), "links below fiber 1, ports 8-15"},
    Name{reg::ofFeature(fpga::kFiberBelowLink + 2), "links below fiber 2, ports 0-7"},
    Name{reg::ofFeature(fpga::kFiberBelowLink + 3), "links below fiber 2, ports 8-15"},
    Name{reg::kReceivingCardSize, "receiving card size"},
    Name{reg::kVspTrigger, "VSP trigger"},
    Name{reg::kGamma10BitValue, "10-bit gamma value"},
    Name{reg::kGamma12BitValue, "12-bit gamma value"},
    Name{reg::kDaemonLoaded, "daemon loaded"},
};

constexpr std::array kSpaces{
    Name{reg::kHwBasicInfo, "hardware info"},
    Name{reg::kPluginCardInfo, "plug-in card info"},
    Name{reg::kCommand, "command"},
    Name{reg::kFeature, "feature"},
    Name{reg::kScreenInfoEcho, "screen info echo"},
    Name{reg::kHCInteraction, "human-computer interaction"},
    Name{reg::kBackupInfo, "backup info"},
    Name{reg::kIntelligentBrightness, "intelligent brightness"},
    Name{reg::kCabinetRotation, "cabinet rotation"},
    Name{reg::kShortcutConfigScreen, "shortcut screen configuration"},
    Name{reg::kScanBoardPosition, "scan board position"},
    Name{reg::kFunCardPortNumber, "function card port number"},
    Name{reg::kSoftwareTable, "software table"},
    Name{reg::kSoftwareTableUpper, "software table, upper part"},
    Name{reg::kEdid, "EDID"},
    Name{reg::kBrightness, "brightness"},
    Name{reg::kRGBGamma, "RGB gamma"},
    Name{reg::kRVConfigFile, "configuration files"},
    Name{reg::kScreenPatternGen, "screen pattern generator"},
    Name{reg::kCardProgram, "card program"},
    Name{reg::kCardProgramUpper, "card program, upper part"},
    Name{reg::kTestPrint, "FPGA bus"},
    Name{reg::kTestPrintUpper, "FPGA bus, upper part"},
};

template <class Table>
std::string_view find(const Table& table, uint32_t address) {
  for (const Name& entry : table)
    if (entry.address == address) return entry.name;
  return {};
}

struct ReadEffect {
  uint32_t address;
  std::size_t length;  // 0: any
  std::string_view text;
};
constexpr std::array kReadEffects{
    ReadEffect{reg::kVspTrigger, 1, "pushes 0xC8 to VSP"},
    ReadEffect{reg::kEdid, 1, "detects the video inputs again"},
    ReadEffect{reg::kScanBoardPosition + 0x1EE, 0,
               "measures the FPGA's read rate; the daemon does nothing else meanwhile"},
    ReadEffect{reg::kScanBoardPosition + 0x1EF, 0,
               "measures the FPGA's write rate and overwrites port tables"},
};

}  // namespace

std::optional<RegisterSpace> spaceOf(uint32_t address) {
  if (find(kSpaces, reg::routerKey(address)).empty()) return std::nullopt;
  return RegisterSpace{.longest = 512, .readable = true, .writable = true};
}

std::string_view readEffect(uint32_t address, std::size_t length) {
  for (const ReadEffect& row : kReadEffects)
    if (row.address == address && (row.length == 0 || row.length == length)) return row.text;
  return {};
}

std::string registerName(uint32_t address) {
  if (const auto name = find(kRegisters, address); !name.empty()) return std::string(name);
  const uint32_t base = reg::routerKey(address);
  std::string text(find(kSpaces, base));
  if (text.empty() || address == base) return text;
  std::array<char, 16> offset{};
  std::snprintf(offset.data(), offset.size(), " + 0x%X", address - base);
  return text + offset.data();
}

}  // namespace parlctl
