// The sending card's features: the named registers of its feature space, as typed values.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "options.h"
#include "peer/frame.h"

namespace parlctl {

inline constexpr uint32_t kFeatureBytes = 0x200;

enum class FeatureKind {
  Number,  // unsigned, little-endian, of 1, 2 or 4 bytes
  Signed,  // the same with a sign
  Bytes,   // hexadecimal digits in ascending order
  Word,    // one of a few words, or a number
  Clock,   // six BCD bytes as a date and a time of day
};

struct Feature {
  std::string name;  // "screen-width"; of a register without one its address
  uint32_t offset;   // in the feature space
  uint32_t length;   // bytes
  FeatureKind kind;
  bool hardware = false;         // the hardware sets it; nobody else can
  bool onBus = false;            // asked of the FPGA's bus: the image has something else in this place
  std::string_view effect = {};  // of a write beyond storing

  uint32_t address() const;
};

// Registers of the feature space by ascending offset, those that the monitor sees on the bus behind them.
const std::vector<Feature>& features();
// A name, an offset below 0x200 or an address of the feature space, with ":LENGTH" behind a number. Throws
// peer::Error (Usage), with the nearest name.
Feature featureOf(const std::string& text);
// The feature that the FPGA register belongs to by its map.
const Feature& featureAt(uint32_t fpgaRegister);

// Values for people and of people; the latter throws peer::Error (Usage).
std::string valueText(const Feature& feature, std::span<const uint8_t> bytes);
Json valueJson(const Feature& feature, std::span<const uint8_t> bytes);
peer::Bytes valueBytes(const Feature& feature, const std::string& text);

// What the card says. Throw peer::Error as the peer does.
peer::Bytes readFeature(peer::Peer& daemon, const Feature& feature);
// The whole image, without asking the FPGA; with it where it is refreshed.
peer::Bytes readImage(peer::Peer& daemon, bool refresh = false);

// One write and what became of it, as `feature set` says it: verified, mismatch or unknown.
Result setFeature(const Options& options, peer::Peer& daemon, const Feature& feature,
                  const peer::Bytes& bytes);

}  // namespace parlctl
