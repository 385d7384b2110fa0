// The single registers that have a name: those that peers write for what they do, and those that pushes name.
// The client's names and guards and docs/registers.md are made from these rows.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "maps/commands.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "maps/rvconfigmap.h"
#include "maps/spaces.h"
#include "maps/tables.h"

namespace ORVE_MCUC {

struct NamedRegister {
  uint32_t address;
  uint32_t length;  // bytes
  std::string_view name;
  std::string_view writing = {};  // what a write does beyond storing

  constexpr uint32_t end() const { return address + length; }
};

inline constexpr std::array kRegisters{
    NamedRegister{reg::kCommand + command::kSort, 1, "local address", "sets the address of the card"},
    NamedRegister{reg::kCommand + command::kSave, 1, "save", "saves the parameters in flash"},
    NamedRegister{reg::kCommand + command::kFactoryReset, 1, "factory reset",
                  "resets the device and reboots it"},
    NamedRegister{reg::kCommand + command::kTestPoint, 1, "test point",
                  "writes an FPGA register: 4 bytes address, highest first, and the byte"},
    NamedRegister{reg::kCommand + command::kReloadProgram, 1, "reload", "restores the FPGA from flash"},
    NamedRegister{reg::kCommand + command::kChipErase, 1, "chip erase", "nothing"},
    NamedRegister{reg::kCommand + command::kMapping, 1, "mapping", "tells all receiving cards to map anew"},
    NamedRegister{reg::kCommand + command::kDebug, 1, "debug", "nothing"},
    NamedRegister{reg::kCommand + command::kReloadCards, 1, "reload cards", "saves the parameters in flash"},
    NamedRegister{reg::ofFeature(fpga::kClock), 6, "clock", "sets the hardware clock"},
    NamedRegister{reg::ofFeature(fpga::kMasterSlavePorts1To4), 4, "master/slave of ports 0-3"},
    NamedRegister{reg::ofFeature(fpga::kRedundancyPorts1To4), 1, "redundancy of ports 0-3"},
    NamedRegister{reg::ofFeature(fpga::kNetLinkPorts1To4), 1, "links of ports 0-3"},
    NamedRegister{reg::ofFeature(fpga::kPowerOnTime), 1, "power-on time",
                  "sets how long the boot screen is shown"},
    NamedRegister{reg::ofFeature(fpga::kOutputMode), 1, "output mode"},
    NamedRegister{reg::ofFeature(fpga::kScreenWidth), 2, "screen width", "changes the output size"},
    NamedRegister{reg::ofFeature(fpga::kScreenHeight), 2, "screen height", "changes the output size"},
    NamedRegister{reg::ofFeature(fpga::kScreenOffsetX), 2, "screen offset X",
                  "shifts the picture in bypass mode"},
    NamedRegister{reg::ofFeature(fpga::kScreenOffsetY), 2, "screen offset Y",
                  "shifts the picture in bypass mode"},
    NamedRegister{reg::ofFeature(fpga::kMappedWidth), 2, "mapped width", "changes the output size"},
    NamedRegister{reg::ofFeature(fpga::kSerialTimeout), 1, "serial time-out",
                  "is the heartbeat of the serial controller"},
    NamedRegister{reg::ofFeature(fpga::kMappingOption), 1, "mapping option", "is pushed to LSD"},
    NamedRegister{reg::ofFeature(fpga::kLowDelay), 1, "low delay",
                  "is pushed to LSD; refused in bypass mode"},
    NamedRegister{reg::ofFeature(fpga::kMasterSlavePorts5To8), 4, "master/slave of ports 4-7"},
    NamedRegister{reg::ofFeature(fpga::kCorrection), 1, "correction", "is pushed to LSD"},
    NamedRegister{reg::ofFeature(fpga::kBackupMark), 1, "role",
                  "0xA5 makes the device a slave, anything else a master"},
    NamedRegister{reg::ofFeature(fpga::kRedundancyPorts5To8), 1, "redundancy of ports 4-7"},
    NamedRegister{reg::ofFeature(fpga::kNetLinkPorts5To8), 1, "links of ports 4-7"},
    NamedRegister{reg::ofFeature(fpga::kFlashSync), 1, "flash sync", "syncs the flash"},
    NamedRegister{reg::ofFeature(fpga::kMasterSlavePorts9To16), 8, "master/slave of ports 8-15"},
    NamedRegister{reg::ofFeature(fpga::kRedundancyPorts9To16), 2, "redundancy of ports 8-15"},
    NamedRegister{reg::ofFeature(fpga::kNetLinkPorts9To16), 2, "links of ports 8-15"},
    NamedRegister{reg::ofFeature(fpga::kInputSource), 1, "input source"},
    NamedRegister{reg::ofFeature(fpga::kFiberLink), 1, "fiber modules"},
    NamedRegister{reg::ofFeature(fpga::kBoardOption), 1, "output board option",
                  "is kept by the device's status store"},
    NamedRegister{reg::ofFeature(fpga::kFiberRedundancy), 1, "fiber redundancy and copy", "is saved at once"},
    NamedRegister{reg::ofFeature(fpga::kOutputEnable), 1, "output enable"},
    NamedRegister{reg::ofFeature(fpga::kFiberToNetEnable), 1, "fiber to net",
                  "turns fiber links into copper ones once"},
    NamedRegister{reg::ofFeature(fpga::kFiberToNetStatus), 1, "fiber to net, path 1"},
    NamedRegister{reg::ofFeature(fpga::kFiberToNetStatus + 1), 1, "fiber to net, path 2"},
    NamedRegister{reg::ofFeature(fpga::kFastCorrection), 1, "fast correction",
                  "1 shortens the pauses of correction data"},
    NamedRegister{reg::ofFeature(fpga::kHdrEnable), 1, "HDR enable"},
    NamedRegister{reg::ofFeature(fpga::kOutputWidth), 2, "output width", "changes the output size"},
    NamedRegister{reg::ofFeature(fpga::kOutputHeight), 2, "output height",
                  "changes the output size; its high byte alone starts and ends the FPGA test"},
    NamedRegister{reg::ofFeature(fpga::kSignedOffsetX), 4, "signed offset X",
                  "shifts the picture in bypass mode"},
    NamedRegister{reg::ofFeature(fpga::kSignedOffsetY), 4, "signed offset Y",
                  "shifts the picture in bypass mode"},
    NamedRegister{reg::ofFeature(fpga::kOffsetMode), 1, "offset mode",
                  "0xA5 opens the bypass mode, 0 closes it"},
    NamedRegister{reg::kReceivingCardSize, 4, "receiving card size"},
    NamedRegister{reg::kCommunicationMode, 1, "communication mode",
                  "sets the environment variable devcom_mode"},
    NamedRegister{reg::kHdrType, 1, "HDR type", "calculates the colours anew"},
    NamedRegister{reg::kScreenPeakLight, 2, "screen peak light", "calculates the colours anew"},
    NamedRegister{reg::kAmbientLight, 1, "ambient light", "calculates the colours anew"},
    NamedRegister{reg::kHlgClass, 1, "HLG class", "calculates the colours anew"},
    NamedRegister{reg::kWarmUp, 2, "display warm-up", "sets mode and time"},
    NamedRegister{reg::kLowGrey, 1, "low grey", "calculates the colours anew"},
    NamedRegister{reg::kPictureQuality, 6, "picture quality", "saturation, contrast, hue u16 in 4 bytes"},
    NamedRegister{reg::kVspTrigger, 1, "VSP trigger"},
    NamedRegister{reg::kRoleTable, 4, "role table"},
    NamedRegister{reg::kEdid, 256, "EDID of the input", "stores an EDID of 128 or 256 bytes and loads it"},
    NamedRegister{reg::kBrightness, 1, "brightness mode", "starts another mode"},
    NamedRegister{reg::kBrightnessControl, 1, "brightness control", "switches the automatic brightness"},
    NamedRegister{reg::kGamma10BitValue, 1, "10-bit gamma value"},
    NamedRegister{reg::kGamma12BitValue, 1, "12-bit gamma value"},
    NamedRegister{rv::kHeader, 1, "configuration file header", "announces the files that follow"},
    NamedRegister{rv::kPlay, rv::kFileNumbers, "play configuration file",
                  "1 sends the file of that number to the cards"},
};

// Registers as pushes name them: status that the monitor saw, where an access would reach something else.
inline constexpr std::array kPushedRegisters{
    NamedRegister{reg::kRebootNotice, 1, "reboot notice"},
    NamedRegister{reg::ofFeature(fpga::kFiberBelowLink), 1, "links below fiber 1, ports 0-7"},
    NamedRegister{reg::ofFeature(fpga::kFiberBelowLink + 1), 1, "links below fiber 1, ports 8-15"},
    NamedRegister{reg::ofFeature(fpga::kFiberBelowLink + 2), 1, "links below fiber 2, ports 0-7"},
    NamedRegister{reg::ofFeature(fpga::kFiberBelowLink + 3), 1, "links below fiber 2, ports 8-15"},
    NamedRegister{reg::ofFeature(fpga::kOptRedundancy), 6, "optical redundancy"},
    NamedRegister{reg::kDaemonLoaded, 1, "daemon loaded"},
};

// Reads that do something beside answering which a caller should mean.
struct ReadEffect {
  uint32_t address;
  uint32_t length;  // 0: of any length
  std::string_view text;
};
inline constexpr std::array kReadEffects{
    ReadEffect{reg::kReadRateTest, 0,
               "measures the FPGA's read rate; the daemon does nothing else meanwhile"},
    ReadEffect{reg::kWriteRateTest, 0, "measures the FPGA's write rate and overwrites port tables"},
    ReadEffect{reg::kVspTrigger, 1, "pushes 0xC8 to VSP"},
    ReadEffect{reg::kEdid, 1, "detects the video inputs again"},
};

// What reading exactly this does beside answering; empty: nothing that anybody would mind.
constexpr std::string_view readEffect(uint32_t address, std::size_t length) {
  for (const auto& row : kReadEffects) {
    if (row.address == address && (row.length == 0 || row.length == length)) return row.text;
  }
  return {};
}

// Registers of which a read does not give what was written. Addresses are those of the devices in the field.
struct ReadDifference {
  uint32_t address;
  uint32_t length;  // bytes of the read; 0: of any length
  std::string_view text;
};
inline constexpr std::array kReadDifferences{
    ReadDifference{reg::kCommunicationMode, 1,
                   "flash 0xC210C0; a write goes to the environment store only, as 0, 1, or 2 for all else"},
    ReadDifference{reg::kHdrType, 4, "type, peak light u16 and low byte of the ambient light, as set last"},
    ReadDifference{reg::kHdrType, 25,
                   "flash 0xC21117 with type, peak light, ambient light and low grey, as set last, laid over "
                   "it; the record of a write is stored at 0xC21000"},
    ReadDifference{reg::kHlgClass, 0,
                   "the class that was set last; a write holds while the type is not 0x58"},
    ReadDifference{reg::kWarmUp, 2,
                   "flash 0xD14130; a write is stored at 0xD14000, where register 0x0F800000 reads it"},
    ReadDifference{reg::kLowGrey, 0, "what was set last; a write holds while the type is 0x58"},
    ReadDifference{
        reg::kPictureQuality, 6,
        "contrast, saturation, hue as u16 each; a write has 4 bytes: saturation, contrast, hue u16"},
    ReadDifference{
        reg::kRGBGamma, 0,
        "the FPGA, 0x700000 on; a write goes to flash, and the last segment of a bank's last table "
        "loads the FPGA unless an HDR type is set"},
    ReadDifference{reg::kGamma10BitValue, 1, "FPGA 0xD12000; a write goes to flash 0xD12000"},
    ReadDifference{reg::kGamma12BitValue, 1, "FPGA 0xD13000; a write goes to flash 0xD13000"},
};

// Ascending, none reaching into the next, each inside one space.
constexpr bool registersAreSound() {
  for (std::size_t i = 0; i < kRegisters.size(); ++i) {
    const auto& row = kRegisters[i];
    if (row.length == 0 || row.name.empty()) return false;
    if (i > 0 && row.address < kRegisters[i - 1].end()) return false;
    const uint32_t base = reg::routerKey(row.address);
    if (!isSpace(base) || reg::routerKey(row.end() - 1) != base) return false;
  }
  return allDiffer(kRegisters, &NamedRegister::name);
}
static_assert(registersAreSound());
static_assert(ascends(kPushedRegisters, &NamedRegister::address));
static_assert(ascends(kReadEffects, &ReadEffect::address));

}  // namespace ORVE_MCUC
