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
    Name{reg::ofFeature(fpga::kMasterSlavePorts1To4), "master/slave of ports 1-4"},
    Name{reg::ofFeature(fpga::kMasterSlavePorts5To8), "master/slave of ports 5-8"},
    Name{reg::ofFeature(fpga::kMasterSlavePorts9To16), "master/slave of ports 9-16"},
    Name{reg::ofFeature(fpga::kRedundancyPorts1To4), "redundancy of ports 1-4"},
    Name{reg::ofFeature(fpga::kNetLinkPorts1To4), "links of ports 1-4"},
    Name{reg::ofFeature(fpga::kRedundancyPorts5To8), "redundancy of ports 5-8"},
    Name{reg::ofFeature(fpga::kNetLinkPorts5To8), "links of ports 5-8"},
    Name{reg::ofFeature(fpga::kRedundancyPorts9To16), "redundancy of ports 9-16"},
    Name{reg::ofFeature(fpga::kNetLinkPorts9To16), "links of ports 9-16"},
    Name{reg::ofFeature(fpga::kFiberLink), "fiber modules"},
    Name{reg::ofFeature(fpga::kFiberRedundancy), "fiber redundancy and copy"},
    Name{reg::ofFeature(fpga::kFiberToNetStatus), "fiber to net, path 1"},
    Name{reg::ofFeature(fpga::kFiberToNetStatus + 1), "fiber to net, path 2"},
    Name{reg::ofFeature(fpga::kFiberBelowLink), "links below fiber 1, ports 1-8"},
    Name{reg::ofFeature(fpga::kFiberBelowLink + 1), "links below fiber 1, ports 9-16"},
    Name{reg::ofFeature(fpga::kFiberBelowLink + 2), "links below fiber 2, ports 1-8"},
    Name{reg::ofFeature(fpga::kFiberBelowLink + 3), "links below fiber 2, ports 9-16"},
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

}  // namespace

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
