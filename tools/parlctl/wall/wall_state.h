// The wall that a board had before, kept under the state directory ($XDG_STATE_HOME, or ~/.local/state), a
// file a board.
#pragma once

#include <optional>
#include <string>

#include "wall_daemon.h"

namespace parlctl {

struct KeptWall {
  WallRecord record;
  std::string time;  // when it was replaced
};

// The file of the board, or of the socket, that the options name; empty when there is no state directory.
std::string keptWallPath(const Options& options);
// Nothing when none was kept; throws peer::Error (Board) when the file is not one of these.
std::optional<KeptWall> keptWall(const Options& options);
// Why it could not be kept; empty: it is.
std::string keepWall(const Options& options, const WallRecord& record);

}  // namespace parlctl
