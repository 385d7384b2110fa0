// A backup of what a peer can read of the sending card and write again, as a file.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "maps/cardgeometry.h"
#include "maps/flashmap.h"
#include "options.h"

namespace parlctl {

// How a section goes back.
enum class Restoring {
  Blocks,    // the blocks that differ
  Features,  // the registers that differ, each whole; not clock, status and bypass mode
  Wall,      // as the configuration that it is, which the card calculates
  Gamma,     // all three curves when one differs, into the bank in force: the last one loads the FPGA
};

struct BackupSection {
  std::string_view name;
  uint32_t address;
  uint32_t length;  // bytes
  uint32_t block;   // bytes of a request
  Restoring restoring;
};
inline constexpr uint32_t kGammaBytes = ORVE_MCUC::flash::kGammaTableSize;

// In the order in which they go back: what a calculation of the wall overwrites stands behind it.
inline constexpr std::array kBackupSections{
    BackupSection{"wall", ORVE_MCUC::reg::kShortcutConfigScreen, 0x2D0, 0x2D0, Restoring::Wall},
    BackupSection{"features", ORVE_MCUC::reg::kFeature, 512, 512, Restoring::Features},
    BackupSection{"port-numbers", ORVE_MCUC::reg::kFunCardPortNumber, 768, 128, Restoring::Blocks},
    BackupSection{"positions", ORVE_MCUC::reg::kScanBoardPosition,
                  static_cast<uint32_t>(ORVE_MCUC::kPortTablesSize), 1024, Restoring::Blocks},
    BackupSection{"backup-info", ORVE_MCUC::reg::kBackupInfo, 0x1000, 512, Restoring::Blocks},
    BackupSection{"software-table", ORVE_MCUC::reg::kSoftwareTable, 0x10000, 0x1000, Restoring::Blocks},
    BackupSection{"software-table-upper", ORVE_MCUC::reg::kSoftwareTableUpper, 0x10000, 0x1000,
                  Restoring::Blocks},
    BackupSection{"gamma-red", ORVE_MCUC::reg::kRGBGamma, kGammaBytes, 1024, Restoring::Gamma},
    BackupSection{"gamma-green", ORVE_MCUC::reg::kRGBGamma + 0x100000, kGammaBytes, 1024, Restoring::Gamma},
    BackupSection{"gamma-blue", ORVE_MCUC::reg::kRGBGamma + 0x200000, kGammaBytes, 1024, Restoring::Gamma},
};

// Bytes by section; a file may lack sections.
struct Backup {
  std::string time;
  std::map<std::string, peer::Bytes, std::less<>> sections;
};

// Of the card; throws peer::Error as the peer does.
peer::Bytes readSection(peer::Peer& daemon, const BackupSection& section);
Backup readBackup(peer::Peer& daemon);

std::string backupText(const Backup& backup);
// Throws peer::Error (Usage) unless all of it is what backupText writes.
Backup backupOfText(const std::string& text);
Backup backupOfFile(const std::string& path);

}  // namespace parlctl
