// What every verb shares: where the daemon is, how long to wait, and where results go.
#pragma once

#include <algorithm>
#include <string>

#include "peer/board.h"
#include "peer/error.h"
#include "peer/peer.h"
#include "result.h"
#include "values.h"

namespace parlctl {

struct Options {
  std::string boardDirectory;
  std::string socketPath;  // empty: the board's own
  uint32_t timeoutMs = 2000;
  bool json = false;
  std::string verb;  // that runs: "reg read"

  peer::Board board() const { return peer::Board(boardDirectory); }
  // Throws peer::Error: NoDaemon, TimeOut.
  peer::Peer connect(uint32_t serviceCode) const;
  peer::Peer connect() const { return connect(peer::toolServiceCode()); }
  // How long to look again for what the daemon carries out behind its reply.
  peer::milliseconds patience() const {
    return std::max(peer::milliseconds(5000), peer::milliseconds(timeoutMs));
  }
  // A board whose files may be read beside the daemon: one reached through another socket may have another
  // board.
  bool besideBoard() const { return socketPath.empty() && board().hasHardware(); }

  // Prints one result, at once: one object on a line with --json, otherwise the text. The worst outcome of
  // all results is the exit status. Throws peer::Error (LostOutput).
  void print(const Result& result) const;
  ExitStatus status() const { return status_; }

 private:
  mutable ExitStatus status_ = kDone;
};

}  // namespace parlctl
