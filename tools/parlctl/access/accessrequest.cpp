#include "accessrequest.h"

#include <algorithm>
#include <iostream>
#include <span>

#include "inputfile.h"
#include "peer/error.h"
#include "registernames.h"
#include "values.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
using peer::Frame;

constexpr unsigned kAllPorts = 0xFF;
constexpr unsigned kAllCards = 0xFFFF;
constexpr std::size_t kMostBytes = 0x01000000;  // of a file: the widest register space

uint8_t deviceType(const std::string& text) {
  const auto* kind = std::ranges::find(kCardKinds, text);
  return static_cast<uint8_t>(kind == kCardKinds.end() ? number(text, 0xFF) : kind - kCardKinds.begin() + 1);
}

Frame target(const AccessArguments& arguments) {
  Frame frame;
  frame.deviceType = deviceType(arguments.deviceType);
  frame.port = static_cast<uint8_t>(number(arguments.port, kAllPorts));
  frame.board = static_cast<uint16_t>(number(arguments.card, kAllCards));
  return frame;
}

bool isMany(const Frame& to) {
  return to.deviceType != 0 && (to.port == kAllPorts || to.board == kAllCards);
}

// HEX, @FILE or - for standard input.
Bytes valueBytes(const std::string& text) {
  if (text == "-") return streamBytes(std::cin, "standard input", kMostBytes);
  return text.starts_with('@') ? fileBytes(text.substr(1), kMostBytes) : peer::fromHex(text);
}

std::size_t longestPiece(const Frame& frame) {
  const auto space = frame.deviceType == 0 ? spaceOf(frame.address) : std::nullopt;
  return space ? std::min<std::size_t>(space->longest, peer::kMaxData) : peer::kMaxData;
}

// An access to what is on no map, or not in this way, would be answered with silence or a refusal.
void guard(const Frame& frame, std::size_t length, const AccessArguments& arguments) {
  if (frame.deviceType != 0 || arguments.force) return;
  constexpr const char* kNotSent = "; nothing was sent (--force sends it)";
  for (const uint64_t at : {uint64_t{frame.address}, uint64_t{frame.address} + length - 1}) {
    const auto space = at <= 0xFFFFFFFF ? spaceOf(static_cast<uint32_t>(at)) : std::nullopt;
    if (!space)
      throw Error(Failure::Acknowledge, hexAddress(frame.address) + ": " + countText(length, "byte") +
                                            " from here are not on the map" + kNotSent);
    if (!(frame.code == peer::kRead ? space->readable : space->writable))
      throw Error(Failure::Acknowledge,
                  hexAddress(frame.address) + "  " + registerName(frame.address) +
                      (frame.code == peer::kRead ? " cannot be read" : " cannot be written") + kNotSent);
  }
}

void guardEffect(const Frame& frame, const AccessArguments& arguments) {
  const auto effect = frame.deviceType == 0 ? readEffect(frame.address, frame.length) : std::string_view();
  if (effect.empty() || arguments.sideEffect) return;
  throw Error(Failure::Usage, "reading " + hexAddress(frame.address) + " " + std::string(effect) +
                                  "; nothing was sent (--side-effect reads it)");
}

// Pieces of a request of so many bytes, the first of them as `frame` says.
std::vector<Frame> cut(const Frame& frame, std::size_t length) {
  std::vector<Frame> pieces;
  for (std::size_t at = 0; at < length;) {
    Frame piece = frame;
    piece.address += static_cast<uint32_t>(at);
    piece.length = static_cast<uint16_t>(std::min(length - at, longestPiece(piece)));
    pieces.push_back(piece);
    at += piece.length;
  }
  return pieces;
}

Access readAccess(const std::string& item, const AccessArguments& arguments) {
  const std::size_t colon = item.find(':');
  const uint32_t length = colon == std::string::npos ? 1 : fromOne(item.substr(colon + 1), kMostBytes);
  Frame frame = target(arguments);
  frame.code = peer::kRead;
  frame.address = number(item.substr(0, colon));
  guard(frame, length, arguments);
  Access access{cut(frame, length)};
  for (const Frame& piece : access.pieces) guardEffect(piece, arguments);
  return access;
}

Access writeAccess(const std::string& item, const AccessArguments& arguments) {
  const std::size_t equals = item.find('=');
  if (equals == std::string::npos || equals + 1 == item.size())
    throw Error(Failure::Usage, "not ADDRESS=HEX, ADDRESS=@FILE or ADDRESS=-: '" + item + "'");
  Frame frame = target(arguments);
  frame.code = peer::kWrite;
  frame.address = number(item.substr(0, equals));
  const Bytes data = valueBytes(item.substr(equals + 1));
  guard(frame, data.size(), arguments);
  Access access{cut(frame, data.size())};
  auto rest = data.begin();
  for (Frame& piece : access.pieces) {
    piece.data.assign(rest, rest + piece.length);
    rest += piece.length;
  }
  return access;
}

template <class Parse>
std::vector<Access> parsed(const AccessArguments& arguments, Parse parse) {
  std::vector<Access> all;
  for (const std::string& item : arguments.items) all.push_back(parse(item, arguments));
  return all;
}

std::string numbered(const std::string& noun, unsigned value, unsigned all) {
  return value == all ? "all " + noun + 's' : noun + ' ' + std::to_string(value);
}

}  // namespace

std::size_t Access::size() const {
  std::size_t bytes = 0;
  for (const Frame& piece : pieces) bytes += piece.length;
  return bytes;
}

std::vector<Access> readRequests(const AccessArguments& arguments) {
  if (isMany(target(arguments))) throw Error(Failure::Usage, "a read needs one port and card");
  return parsed(arguments, &readAccess);
}

std::vector<Access> writeRequests(const AccessArguments& arguments) {
  if (arguments.verify && isMany(target(arguments)))
    throw Error(Failure::Usage,
                "what is written to all cards cannot be read back: --verify needs one port and card");
  return parsed(arguments, &writeAccess);
}

std::string targetName(const Frame& frame) {
  constexpr const char* kCards[] = {"receiving card", "multi-function card", "distribution card",
                                    "3D launcher"};
  if (frame.deviceType == 0) return registerName(frame.address);
  const unsigned kind = frame.deviceType - 1U;
  return numbered(kind < std::size(kCards) ? kCards[kind] : "card", frame.board, kAllCards) + " of " +
         numbered("port", frame.port, kAllPorts);
}

}  // namespace parlctl
