// The wall as text.
#include <algorithm>

#include "values.h"
#include "wallpicture.h"

namespace parlctl {

namespace {

constexpr uint32_t kMostColumns = 24;  // of cards with a label
constexpr uint32_t kMostRows = 64;
constexpr std::size_t kWideLine = 80;  // characters of a line
constexpr std::size_t kAxis = 7;       // of them, those of the pixel axis at the left

enum class Step : char { None = ' ', Right = '>', Left = '<', Down = 'v', Up = '^' };

// One card: its place behind its port, and where the cable goes on from it.
struct Cell {
  bool covered = false;
  unsigned port = 0;
  std::size_t place = 0;
  Step next = Step::None;

  std::string label() const { return covered ? std::to_string(port) + ':' + std::to_string(place) : "."; }
};

class Grid {
 public:
  explicit Grid(const WallPlan& plan)
      : columns_(plan.columns()), cells_(std::size_t{plan.rows()} * plan.columns()) {
    for (const WallPort& port : plan.used()) {
      for (std::size_t i = 0; i < port.chain.size(); ++i) {
        const Pixel card = port.chain[i];
        cells_[index(plan.rowOf(card), plan.columnOf(card))] = {
            true, port.port, i, i + 1 < port.chain.size() ? step(card, port.chain[i + 1]) : Step::None};
      }
    }
  }
  const Cell& at(uint32_t row, uint32_t column) const { return cells_[index(row, column)]; }
  std::size_t labelWidth() const {
    std::size_t width = 0;
    for (const Cell& cell : cells_) width = std::max(width, cell.label().size());
    return width;
  }

 private:
  std::size_t index(uint32_t row, uint32_t column) const { return std::size_t{row} * columns_ + column; }
  static Step step(Pixel from, Pixel to) {
    if (to.x != from.x) return to.x > from.x ? Step::Right : Step::Left;
    return to.y > from.y ? Step::Down : Step::Up;
  }

  uint32_t columns_;
  std::vector<Cell> cells_;
};

std::string padded(std::string text, std::size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
  return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string trimmed(std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

// The arrow between a card and its neighbour behind it (to the right, or below), whichever way it points.
char between(const Cell& cell, const Cell& behind, Step forward, Step back) {
  if (cell.next == forward) return static_cast<char>(forward);
  return static_cast<char>(behind.next == back ? back : Step::None);
}

std::string rowOfCards(const WallPlan& plan, const Grid& grid, uint32_t row, std::size_t width,
                       std::size_t gap) {
  const uint32_t columns = plan.columns();
  std::string line = rightAligned(std::to_string(row * plan.card().height), kAxis - 2) + "  ";
  for (uint32_t column = 0; column < columns; ++column) {
    line += padded(grid.at(row, column).label(), width);
    if (column + 1 == columns) break;
    std::string arrow(gap, ' ');
    arrow[gap / 2] = between(grid.at(row, column), grid.at(row, column + 1), Step::Right, Step::Left);
    line += arrow;
  }
  return trimmed(line);
}

// The arrows between a row and the one below; nothing when no cable passes there.
std::string rowOfArrows(const WallPlan& plan, const Grid& grid, uint32_t row, std::size_t width,
                        std::size_t gap) {
  if (row + 1 == plan.rows()) return {};
  std::string line(kAxis, ' ');
  bool any = false;
  for (uint32_t column = 0; column < plan.columns(); ++column) {
    const char arrow = between(grid.at(row, column), grid.at(row + 1, column), Step::Down, Step::Up);
    any = any || arrow != ' ';
    line += padded(std::string(1, ' ') + arrow, width + gap);
  }
  return any ? trimmed(line) : std::string();
}

struct CellSize {
  std::size_t width;
  std::size_t gap;
};

// As wide as the columns allow; nothing when labels do not fit.
std::optional<CellSize> cellSize(const WallPlan& plan, const Grid& grid) {
  const std::size_t width =
      std::max(grid.labelWidth(), std::to_string(plan.size().width - plan.card().width).size());
  if (plan.columns() > kMostColumns || plan.rows() > kMostRows) return std::nullopt;
  for (const std::size_t gap : {3U, 1U})
    if (kAxis + plan.columns() * (width + gap) <= kWideLine + gap) return CellSize{width, gap};
  return std::nullopt;
}

std::string detailed(const WallPlan& plan, const Grid& grid, CellSize cell) {
  std::string axis(kAxis, ' ');
  for (uint32_t column = 0; column < plan.columns(); ++column)
    axis += padded(std::to_string(column * plan.card().width), cell.width + cell.gap);
  std::string text =
      "Front view: PORT:CARD, cards counted along the cable; pixels at the edges\n\n" + trimmed(axis);
  for (uint32_t row = 0; row < plan.rows(); ++row)
    text += rowOfCards(plan, grid, row, cell.width, cell.gap) +
            rowOfArrows(plan, grid, row, cell.width, cell.gap);
  return text;
}

char compactCell(const Cell& cell) {
  if (!cell.covered) return '.';
  if (cell.place == 0) return static_cast<char>('0' + cell.port);
  return cell.next == Step::None ? '#' : static_cast<char>(cell.next);
}

std::string compact(const WallPlan& plan, const Grid& grid) {
  std::string text =
      "Front view: a character a card; a port's number where its cable begins,\n# where it ends\n\n";
  for (uint32_t row = 0; row < plan.rows(); ++row) {
    std::string line = rightAligned(std::to_string(row * plan.card().height), kAxis - 2) + "  ";
    for (uint32_t column = 0; column < plan.columns(); ++column) line += compactCell(grid.at(row, column));
    text += trimmed(line);
  }
  return text;
}

std::string picture(const WallPlan& plan) {
  if (!plan.onGrid()) return "The blocks lie on no common grid of cards: --svg draws them\n";
  if (kAxis + plan.columns() > kWideLine)
    return "The wall is too wide to be drawn with characters: --svg draws it\n";
  const Grid grid(plan);
  const auto cell = cellSize(plan, grid);
  return cell ? detailed(plan, grid, *cell) : compact(plan, grid);
}

using Row = std::array<std::string, 7>;

std::string tableLine(const Row& row) {
  constexpr std::array<std::size_t, 7> kWidths{6, 15, 14, 7, 14, 14, 0};
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i) line += padded(row[i], kWidths[i]);
  return trimmed(line);
}

std::string portTable(const WallPlan& plan) {
  std::string text = tableLine({"port", "window", "offset", "cards", "first card", "last card", "copies"});
  for (const WallPort& port : plan.used())
    text +=
        tableLine({std::to_string(port.port), sizeText(port.window), pairText(port.offset),
                   std::to_string(port.chain.size()), pairText(port.chain.front()),
                   pairText(port.chain.back()), port.duplicates.empty() ? "-" : listText(port.duplicates)});
  return text;
}

std::string heading(const WallPlan& plan) {
  const std::size_t ports = plan.used().size();
  std::string text = "wall     " + sizeText({plan.rows(), plan.columns()}) + " cards of " +
                     sizeText({plan.card().width, plan.card().height}) + ", " + sizeText(plan.size()) +
                     " pixels\n";
  if (!plan.smart())
    return text + "chains   a block for each port, " + countText(ports, "port") + " in use\n";
  return text + "chains   mode " + modeText(plan.smart()->mode) + ", " +
         countText(plan.smart()->cardsPerPort, "card") + " per port, " + countText(ports, "port") +
         " in use\n";
}

}  // namespace

std::string wallText(const WallPlan& plan) {
  std::string text = heading(plan) + '\n' + picture(plan) + '\n' + portTable(plan);
  text.pop_back();  // the printer ends the line
  return text;
}

}  // namespace parlctl
