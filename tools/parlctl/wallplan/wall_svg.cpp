// The wall as an SVG document.
#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

#include "helptext.h"
#include "svgsheet.h"
#include "values.h"
#include "wallpicture.h"

namespace parlctl {

namespace {

constexpr double kLeft = 70;  // room for the pixel axes and the margins
constexpr double kRight = 50;
constexpr double kListTop = 116;
constexpr double kAxisRoom = 34;
constexpr double kBottom = 30;
constexpr double kWallWidth = 1080;  // of the drawn wall at most
constexpr double kWallHeight = 800;  // as long as its cards stay large enough to see
constexpr double kTallWall = 1600;
constexpr double kNarrowest = 860;  // what the list of ports needs
constexpr double kLargestCard = 110;
constexpr double kSmallestCard = 12;
constexpr double kLineHeight = 20;
constexpr double kNumberWidth = 46;  // of a pixel number on the axis, with its distance
constexpr double kNumberHeight = 18;

constexpr const char* kFirst = "#0a8f3c";
constexpr const char* kLast = "#d4141c";

// Ten colours that people with any colour vision can tell apart, in an order that keeps neighbours different.
constexpr std::array<const char*, ORVE_MCUC::kMappedPorts> kPortColours{
    "#88ccee", "#ddcc77", "#aa4499", "#44aa99", "#cc6677",
    "#6699cc", "#999933", "#bbbbbb", "#882255", "#117733"};

// Where cards lie on the sheet, and how large they are drawn.
class Layout {
 public:
  Layout(const WallPlan& plan, std::size_t notes);

  Point corner(Pixel at) const { return {kLeft + across(at.x), top_ + down(at.y)}; }
  Point centre(Pixel card) const {
    const Point at = corner(card);
    return {at.x + cardWidth_ / 2, at.y + cardHeight_ / 2};
  }
  // Pixels of the wall on the sheet.
  double across(uint32_t pixels) const { return pixels * cardWidth_ / card_.width; }
  double down(uint32_t pixels) const { return pixels * cardHeight_ / card_.height; }
  double cardWidth() const { return cardWidth_; }
  double cardHeight() const { return cardHeight_; }
  double smallSide() const { return std::min(cardWidth_, cardHeight_); }
  double wallWidth() const { return across(size_.width); }
  double wallHeight() const { return down(size_.height); }
  double listTop() const { return listTop_; }
  double sheetWidth() const {
    return std::max(kNarrowest, kLeft + std::max(wallWidth(), across(rightmost_)) + kRight);
  }
  double sheetHeight() const { return top_ + std::max(wallHeight(), down(lowest_)) + kBottom; }
  bool toScale() const { return std::abs(cardWidth_ / cardHeight_ * card_.height / card_.width - 1) < 0.05; }
  // A label has the upper part of its card, in column modes only the half beside the cable.
  double labelSize() const { return std::clamp(cardWidth_ / (alongRows_ ? 5 : 6.5), 9.0, 14.0); }
  bool labelled() const { return cardWidth_ >= (alongRows_ ? 40 : 56) && cardHeight_ / 2 >= labelSize() + 8; }

 private:
  CardSize card_;
  PixelSize size_;
  uint32_t rightmost_ = 0;  // of the windows, which may reach over the edge
  uint32_t lowest_ = 0;
  bool alongRows_;
  double listTop_;
  double top_;
  double cardWidth_;
  double cardHeight_;
};

Layout::Layout(const WallPlan& plan, std::size_t notes)
    : card_(plan.card()),
      size_(plan.size()),
      alongRows_(std::ranges::all_of(
          plan.used(), [](const WallPort& port) { return ORVE_MCUC::runsAlongRows(port.cable.mode); })),
      listTop_(kListTop + kLineHeight * static_cast<double>(notes)),
      top_(listTop_ + kLineHeight * static_cast<double>(plan.used().size()) + kAxisRoom) {
  for (const WallPort& port : plan.used()) {
    rightmost_ = std::max(rightmost_, port.offset.x + port.window.width);
    lowest_ = std::max(lowest_, port.offset.y + port.window.height);
  }
  const double fitting = std::min({kWallWidth / size_.width, kWallHeight / size_.height,
                                   kLargestCard / std::max(card_.width, card_.height)});
  const double seen = std::min({kWallWidth / size_.width, kTallWall / size_.height,
                                kSmallestCard / std::min(card_.width, card_.height)});
  const double factor = std::max(fitting, seen);
  // A side that is still a few points only is stretched as far as there is room.
  cardWidth_ = std::max(card_.width * factor, std::min(kSmallestCard, kWallWidth / plan.columns()));
  cardHeight_ = std::max(card_.height * factor, std::min(kSmallestCard, kTallWall / plan.rows()));
}

std::string chainsText(const WallPlan& plan) {
  const std::string cards = "cards of " + sizeText({plan.card().width, plan.card().height}) + " pixels, ";
  const std::string ports = countText(plan.used().size(), "port") + " in use";
  if (!plan.smart()) return "A block for each port, " + cards + ports;
  return "Mode " + modeText(plan.smart()->mode) + ", " + cards +
         countText(plan.smart()->cardsPerPort, "card") + " per port, " + ports;
}

// Lines that the narrowest sheet has room for.
std::vector<std::string> linesOf(const std::vector<std::string>& notes) {
  std::vector<std::string> lines;
  for (const std::string& note : notes) {
    std::istringstream rows(wrapped(note, 4));
    for (std::string row; std::getline(rows, row);) lines.push_back(row);
  }
  return lines;
}

void drawHeading(SvgSheet& sheet, const WallPlan& plan, const Layout& layout,
                 const std::vector<std::string>& notes) {
  sheet.text({24, 38},
             "Wall of " + sizeText({plan.rows(), plan.columns()}) +
                 " cards, front view: " + sizeText(plan.size()) + " pixels",
             {.size = 22, .weight = "bold"});
  sheet.text({24, 62}, chainsText(plan) + (layout.toScale() ? "" : "; not drawn to scale"));
  sheet.dot({31, 83}, 6, kFirst);
  sheet.text({44, 88}, "first card of a port");
  sheet.square({216, 83}, 6, kLast);
  sheet.text({229, 88}, "last card");
  if (layout.labelled()) sheet.text({320, 88}, "PORT:CARD, cards counted along the cable from 0");
  double y = kListTop - 4;
  for (const std::string& note : notes) {
    sheet.text({24, y}, note, {.size = 13, .weight = "bold"});
    y += kLineHeight;
  }
}

void drawListOfPorts(SvgSheet& sheet, const WallPlan& plan, const Layout& layout) {
  double y = layout.listTop();
  for (const WallPort& port : plan.used()) {
    sheet.box({24, y - 12}, 14, 14, portColour(port.port), 1, 1);
    sheet.text({46, y}, "port " + std::to_string(port.port), {.weight = "bold"});
    sheet.text({112, y}, countText(port.chain.size(), "card"));
    sheet.text({210, y}, "window " + sizeText(port.window));
    sheet.text({400, y}, "at " + pairText(port.offset));
    if (!port.duplicates.empty())
      sheet.text({530, y}, (port.duplicates.size() == 1 ? "port " : "ports ") + listText(port.duplicates) +
                               (port.duplicates.size() == 1 ? " repeats port " : " repeat port ") +
                               std::to_string(port.port));
    y += kLineHeight;
  }
}

// Places of an axis that get a number, in pixels: its ends, where ports begin, and others between them as far
// as numbers keep their distance (in pixels, too).
std::set<uint32_t> ticks(uint32_t end, const std::set<uint32_t>& ports, uint32_t step, double distance) {
  std::set<uint32_t> chosen{0, end};
  const auto add = [&](uint32_t pixel) {
    const auto after = chosen.lower_bound(pixel);  // never the end: `end` is among them
    const uint32_t before = after == chosen.begin() ? 0 : *std::prev(after);
    if (*after - pixel >= distance && pixel - before >= distance) chosen.insert(pixel);
  };
  for (const uint32_t pixel : ports) add(pixel);
  for (uint32_t pixel = step; pixel < end; pixel += step) add(pixel);
  return chosen;
}

void drawAxes(SvgSheet& sheet, const WallPlan& plan, const Layout& layout) {
  const CardSize card = plan.card();
  const PixelSize size = plan.size();
  std::set<uint32_t> x;
  std::set<uint32_t> y;
  for (const WallPort& port : plan.used()) {
    const PixelBox box = plan.boxOf(port);
    x.insert(box.at.x);
    y.insert(box.at.y);
  }
  // A wall narrower than a number has the second one to the right of it.
  const bool narrow = layout.wallWidth() < kNumberWidth;
  std::string marks;
  for (const uint32_t pixel :
       ticks(size.width, x, card.width, kNumberWidth * size.width / layout.wallWidth())) {
    const Point at = layout.corner({pixel, 0});
    marks += lineDown({at.x, at.y - 6}, 6);
    const char* anchor = !narrow ? "middle" : (pixel == 0 ? "end" : "start");
    sheet.text({at.x, at.y - 10}, std::to_string(pixel), {.size = 12, .anchor = anchor});
  }
  for (const uint32_t pixel :
       ticks(size.height, y, card.height, kNumberHeight * size.height / layout.wallHeight())) {
    const Point at = layout.corner({0, pixel});
    marks += lineRight({at.x - 6, at.y}, 6);
    sheet.text({at.x - 10, at.y + 4}, std::to_string(pixel), {.size = 12, .anchor = "end"});
  }
  sheet.lines(marks, "black", 1);
}

void drawGrid(SvgSheet& sheet, const WallPlan& plan, const Layout& layout, const PixelBox& box) {
  if (layout.smallSide() < 5) return;
  std::string lines;
  for (uint32_t x = box.at.x + plan.card().width; x < box.right(); x += plan.card().width)
    lines += lineDown(layout.corner({x, box.at.y}), layout.down(box.size.height));
  for (uint32_t y = box.at.y + plan.card().height; y < box.bottom(); y += plan.card().height)
    lines += lineRight(layout.corner({box.at.x, y}), layout.across(box.size.width));
  sheet.lines(lines, "white", 0.8);
}

void drawBlock(SvgSheet& sheet, const Layout& layout, unsigned port, const PixelBox& box) {
  sheet.box(layout.corner(box.at), layout.across(box.size.width), layout.down(box.size.height),
            portColour(port), 0.6, 2);
}

// Where a window is larger than the cards in it.
void drawWindow(SvgSheet& sheet, const WallPlan& plan, const Layout& layout, const WallPort& port) {
  const PixelBox cards = plan.boxOf(port);
  if (cards.at == port.offset && cards.size == port.window) return;
  const Point from = layout.corner(port.offset);
  const Point to = layout.corner({port.offset.x + port.window.width, port.offset.y + port.window.height});
  const std::array<Point, 5> corners{from, Point{to.x, from.y}, to, Point{from.x, to.y}, from};
  sheet.dashes(lineThrough(corners), kLast, 2.5, "7 4");
  sheet.beginHalo(3);
  sheet.text({from.x + 6, to.y - 8}, "window of port " + std::to_string(port.port), {.size = 12});
  sheet.endHalo();
}

void drawChain(SvgSheet& sheet, const Layout& layout, const WallPort& port) {
  const double side = layout.smallSide();
  const auto every = static_cast<std::size_t>(std::ceil(std::max(1.0, 22 / side)));
  std::vector<Point> points;
  std::string arrows;
  for (const Pixel card : port.chain) {
    points.push_back(layout.centre(card));
    const std::size_t hop = points.size() - 2;  // from the card before
    if (points.size() > 1 && hop % every == every / 2)
      arrows += arrowHead(points[hop], points.back(), std::clamp(side * 0.3, 2.5, 9.0));
  }
  sheet.polyline(points, std::clamp(side * 0.05, 0.6, 2.5));
  sheet.fill(arrows);
  // A chain of one card: both marks, the dot on the square.
  const double radius = std::clamp(side * 0.14, 3.5, 10.0);
  sheet.square(points.back(), points.size() == 1 ? radius * 1.5 : radius, kLast);
  sheet.dot(points.front(), radius, kFirst);
}

void drawLabels(SvgSheet& sheet, const Layout& layout, const WallPort& port) {
  const double size = layout.labelSize();
  sheet.beginHalo(2);
  for (std::size_t i = 0; i < port.chain.size(); ++i) {
    const Point at = layout.corner(port.chain[i]);
    sheet.text({at.x + 4, at.y + size + 1}, std::to_string(port.port) + ':' + std::to_string(i),
               {.size = size});
  }
  sheet.endHalo();
}

// In the middle of the port's cards, where they are too small for labels of their own.
void drawPortName(SvgSheet& sheet, const Layout& layout, unsigned port, const PixelBox& box) {
  const double width = layout.across(box.size.width);
  const double height = layout.down(box.size.height);
  const bool narrow = width < 64;
  const double size = std::clamp(std::min(narrow ? width : width / 5, height / 2), 10.0, 24.0);
  const Point at = layout.corner(box.at);
  sheet.beginHalo(size / 4);
  sheet.text({at.x + width / 2, at.y + height / 2 + size * 0.36},
             (narrow ? "" : "port ") + std::to_string(port),
             {.size = size, .anchor = "middle", .weight = "bold"});
  sheet.endHalo();
}

}  // namespace

const char* portColour(unsigned port) {
  return kPortColours[port % kPortColours.size()];
}

std::string wallSvg(const WallPlan& plan, const std::vector<std::string>& notes) {
  const std::vector<std::string> lines = linesOf(notes);
  const Layout layout(plan, lines.size());
  SvgSheet sheet(layout.sheetWidth(), layout.sheetHeight());
  const auto used = plan.used();
  drawHeading(sheet, plan, layout, lines);
  drawListOfPorts(sheet, plan, layout);
  drawAxes(sheet, plan, layout);
  for (const WallPort& port : used) {
    drawBlock(sheet, layout, port.port, plan.boxOf(port));
    drawGrid(sheet, plan, layout, plan.boxOf(port));
  }
  for (const WallPort& port : used) {
    drawChain(sheet, layout, port);
    if (layout.labelled())
      drawLabels(sheet, layout, port);
    else
      drawPortName(sheet, layout, port.port, plan.boxOf(port));
  }
  for (const WallPort& port : used) drawWindow(sheet, plan, layout, port);
  return sheet.finish();
}

}  // namespace parlctl
