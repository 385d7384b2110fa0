// The input that a peer's EDID requests are for: the one that the screen shows. All of it throws peer::Error.
#pragma once

#include <optional>
#include <string>

#include "options.h"

namespace parlctl {

// "A", "b" or "0": the groups that can be selected, 0 to 2.
int parseGroup(const std::string& text);
char groupLetter(int group);

// The group of the selected source, 0 for a source that names none; nothing where the daemon does not tell.
std::optional<int> selectedGroup(peer::Peer& daemon);

// Has a group selected while it lives, and what was selected before again afterwards.
class GroupSelection {
 public:
  // Nothing wanted: the selection stays. Throws Error (Mismatch) when the daemon does not follow.
  GroupSelection(const Options& options, peer::Peer& daemon, std::optional<int> wanted);
  ~GroupSelection();
  GroupSelection(const GroupSelection&) = delete;
  GroupSelection& operator=(const GroupSelection&) = delete;

  std::optional<int> group() const { return group_; }

 private:
  void select(uint8_t source);

  const Options& options_;
  peer::Peer& daemon_;
  std::optional<uint8_t> before_;  // to be selected again
  std::optional<int> group_;
};

}  // namespace parlctl
