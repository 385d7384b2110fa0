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

#include "calc/advmapping.h"

namespace parlctl {

using ORVE_MCUC::AdvancedScreen;
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

// A rectangle of pixels.
struct PixelBox {
  Pixel at;
  PixelSize size;
  uint32_t right() const { return at.x + size.width; }
  uint32_t bottom() const { return at.y + size.height; }
};
bool overlap(const PixelBox& a, const PixelBox& b);

struct WallPort {
  unsigned port = 0;
  bool used = false;  // it has cards of its own
  PixelSize
      window{};  // of a smart wall, the last port in use keeps the whole window for the cards that are left
  Pixel offset{};
  ORVE_MCUC::CardChain cable{};  // as the port's table holds it
  std::optional<unsigned> duplicateOf{};
  std::vector<unsigned> duplicates{};  // the ports that repeat this one
  std::vector<Pixel> chain{};          // upper left pixels of the cards, in the order of the cable
};

// A wall of either kind of configuration. Smart: equal parts of one rectangle. Advanced: a block for each
// port.
class WallPlan {
 public:
  // Throws peer::Error (Usage) with the reason when there is no such wall; see wallProblem.
  explicit WallPlan(const SmartScreen& screen);
  WallPlan(const AdvancedScreen& blocks, CardSize card);

  // Of a smart wall, what it was made of.
  const std::optional<SmartScreen>& smart() const { return smart_; }
  CardSize card() const { return card_; }
  // What is put out, and what the screen registers hold beside it.
  PixelSize size() const { return size_; }
  PixelSize screenField() const { return screenField_; }
  // All ten ports, and those of them that have cards of their own.
  std::span<const WallPort> ports() const { return ports_; }
  std::vector<WallPort> used() const;

  // Cards of the grid that the whole wall covers; onGrid: every card lies on it.
  uint32_t rows() const { return (size_.height + card_.height - 1U) / card_.height; }
  uint32_t columns() const { return (size_.width + card_.width - 1U) / card_.width; }
  bool onGrid() const;
  uint32_t rowOf(Pixel card) const { return card.y / card_.height; }
  uint32_t columnOf(Pixel card) const { return card.x / card_.width; }
  // The pixels that the port's cards cover.
  PixelBox boxOf(const WallPort& port) const;

 private:
  std::optional<SmartScreen> smart_;
  CardSize card_;
  PixelSize size_;
  PixelSize screenField_;
  std::vector<WallPort> ports_;
};

// Why the daemon would not map a screen: which rule it breaks, with the numbers. Empty: it is mapped.
std::string wallProblem(const SmartScreen& screen);

std::string wallProblem(const AdvancedScreen& blocks, CardSize card);

// The cards of the fewest whole lines per port that feed the wall through so many ports. Rows and columns
// must not be zero, ports 1..10.
uint16_t cardsForPorts(SmartScreen screen, unsigned ports);

// "a, b": a pair of numbers as texts show them; "a x b": a size.
std::string pairText(Pixel at);
std::string sizeText(PixelSize size);
// "2, 4, 6-9".
std::string listText(std::span<const unsigned> numbers);
// "4 top-left-rows"; the number alone when the mode does not exist.
std::string modeText(uint8_t mode);

}  // namespace parlctl
