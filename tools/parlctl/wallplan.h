// What a smart configuration makes of a wall: the daemon's own calculation, put together for pictures, tables
// and comparisons.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "calc/mapping.h"

namespace parlctl {

using ORVE_MCUC::CardSize;
using ORVE_MCUC::SmartScreen;

// The connection modes in order: the corner where a chain begins, and what it runs along.
inline constexpr std::array<std::string_view, ORVE_MCUC::kConnectionModes> kModeNames{
    "top-left-rows",    "top-left-columns",    "top-right-rows",    "top-right-columns",
    "bottom-left-rows", "bottom-left-columns", "bottom-right-rows", "bottom-right-columns"};

// A point of the wall in pixels from its upper left corner, seen from the front.
struct Pixel {
  uint32_t x = 0;
  uint32_t y = 0;
  bool operator==(const Pixel&) const = default;
};

struct PixelSize {
  uint32_t width = 0;
  uint32_t height = 0;
  bool operator==(const PixelSize&) const = default;
};

// The rows and columns of cards that a chain covers.
struct CardBlock {
  uint32_t row = 0;
  uint32_t column = 0;
  uint32_t rows = 0;
  uint32_t columns = 0;
};

struct WallPort {
  unsigned port = 0;
  PixelSize window;  // the last port in use keeps the whole window for the cards that are left
  Pixel offset;
  std::optional<unsigned> duplicateOf;
  std::vector<unsigned> duplicates;  // the ports that repeat this one
  std::vector<Pixel> chain;          // upper left pixels of the cards, in the order of the cable
};

class WallPlan {
 public:
  // Throws peer::Error (Usage) with the reason when there is no such wall; see wallProblem.
  explicit WallPlan(const SmartScreen& screen);

  const SmartScreen& screen() const { return screen_; }
  const ORVE_MCUC::PortSplit& split() const { return split_; }
  PixelSize size() const;
  // All ten ports, and those of them that have cards of their own.
  std::span<const WallPort> ports() const { return ports_; }
  std::span<const WallPort> used() const { return ports().first(split_.UsedPortNum); }

  uint32_t rowOf(Pixel card) const { return card.y / screen_.card.height; }
  uint32_t columnOf(Pixel card) const { return card.x / screen_.card.width; }
  CardBlock blockOf(const WallPort& port) const;

 private:
  SmartScreen screen_;
  ORVE_MCUC::PortSplit split_;
  std::vector<WallPort> ports_;
};

// Why the daemon would not map a screen: which rule it breaks, with the numbers. Empty: it is mapped.
std::string wallProblem(const SmartScreen& screen);

// The cards of the fewest whole lines per port that feed the wall through so many ports. Rows and columns
// must not be zero, ports 1..10.
uint16_t cardsForPorts(SmartScreen screen, unsigned ports);

// "a, b": a pair of numbers as texts show them; "a x b": a size.
std::string pairText(Pixel at);
std::string sizeText(PixelSize size);
// "2, 4, 6".
std::string listText(std::span<const unsigned> numbers);
// "4 top-left-rows"; the number alone when the mode does not exist.
std::string modeText(uint8_t mode);

}  // namespace parlctl
