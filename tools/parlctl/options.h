// What every verb shares: where the daemon is, how long to wait, and how results are printed.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "peer/board.h"
#include "peer/error.h"
#include "peer/peer.h"

namespace parlctl {

using Json = nlohmann::ordered_json;

struct Options {
  std::string boardDirectory;
  std::string socketPath;  // empty: the board's own
  unsigned timeoutMs = 2000;
  bool json = false;

  peer::Board board() const { return peer::Board(boardDirectory); }
  peer::Peer connect(uint32_t serviceCode) const;
};

// What the shell sees of a failure.
enum ExitStatus : int { kDone = 0, kUsage = 2, kNoDaemon = 3, kRefused = 4, kWrongReply = 5 };
ExitStatus exitStatus(peer::Failure failure);

// Prints one result: the object on one line with --json, otherwise the text.
void print(const Options& options, const Json& object, const std::string& text);

// An object's entries in one line: "copper 0 1 2 3, fiber1 -"; null as "not told".
std::string words(const Json& object);

// A decimal number or a hexadecimal one after 0x; throws Error (Usage), naming the text, on anything else, on
// a leading zero (nobody knows what it means) and above the limit.
uint32_t number(const std::string& text, uint32_t limit = 0xFFFFFFFF);
// 0x and eight digits.
std::string hexAddress(uint32_t address);

}  // namespace parlctl
