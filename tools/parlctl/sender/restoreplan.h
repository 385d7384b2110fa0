// What a restore would change: the card beside a backup.
#pragma once

#include <optional>
#include <vector>

#include "backupfile.h"
#include "wall_daemon.h"

namespace parlctl {

// One write, with what is there now.
struct RegisterChange {
  std::string place;  // "features: screen-width", "positions + 0x400"
  uint32_t address;
  peer::Bytes wanted;
  peer::Bytes found;
};

struct RestorePlan {
  std::vector<RegisterChange> changes;  // in the order of the writes
  std::vector<std::string> kept;        // differs, and is not restored
};

// Writes that make a section as it was in the backup; walls and gamma curves are restored as wholes.
RestorePlan planSection(const BackupSection& section, const peer::Bytes& wanted, const peer::Bytes& found);

// The wall's record as it is to be submitted; nothing when the card has that wall.
std::optional<WallRecord> wallToSubmit(const peer::Bytes& wanted, const peer::Bytes& found, CardSize card);

}  // namespace parlctl
