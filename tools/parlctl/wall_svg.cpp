// The wall as an SVG document.
#include <algorithm>
#include <cmath>
#include <set>

#include "wallpicture.h"
#include "xmlwriter.h"

namespace parlctl {

namespace {

constexpr double kLeft = 70;  // room for the pixel axes and the margins
constexpr double kRight = 50;
constexpr double kAxisRoom = 30;
constexpr double kWallWidth = 1080;  // of the drawn wall at most
constexpr double kWallHeight = 800;  // as long as its cards stay large enough to see
constexpr double kTallWall = 1600;
constexpr double kNarrowest = 860;  // what the list of ports needs
constexpr double kLargestCard = 110;
constexpr double kSmallestCard = 12;
constexpr double kLineHeight = 20;

constexpr const char* kFirst = "#0a8f3c";
constexpr const char* kLast = "#d4141c";
constexpr const char* kInk = "#1a1a1a";

// Ten colours that people with any colour vision can tell apart, in an order that keeps neighbours different.
constexpr std::array<const char*, ORVE_MCUC::kMappedPorts> kPortColours{
    "#88ccee", "#ddcc77", "#aa4499", "#44aa99", "#cc6677",
    "#6699cc", "#999933", "#bbbbbb", "#882255", "#117733"};

struct Point {
  double x = 0;
  double y = 0;
};

std::string coordinates(Point at) {
  return xmlNumber(at.x) + ',' + xmlNumber(at.y);
}

class WallDrawing {
 public:
  explicit WallDrawing(const WallPlan& plan) : plan_(plan) { scale(); }
  std::string draw();

 private:
  void scale();
  double wallWidth() const { return plan_.screen().columns * cardWidth_; }
  double wallHeight() const { return plan_.screen().rows * cardHeight_; }
  double smallSide() const { return std::min(cardWidth_, cardHeight_); }
  // A label has the upper part of its card, in column modes only the half beside the cable.
  bool rows() const { return ORVE_MCUC::runsAlongRows(plan_.screen().mode); }
  double labelSize() const { return std::clamp(cardWidth_ / (rows() ? 5 : 6.5), 9.0, 14.0); }
  bool labelled() const { return cardWidth_ >= (rows() ? 40 : 56) && cardHeight_ / 2 >= labelSize() + 8; }
  bool toScale() const;
  double drawnX(double pixels) const { return kLeft + pixels / plan_.screen().card.width * cardWidth_; }
  double drawnY(double pixels) const { return top_ + pixels / plan_.screen().card.height * cardHeight_; }
  Point centre(Pixel card) const {
    return {drawnX(card.x) + cardWidth_ / 2, drawnY(card.y) + cardHeight_ / 2};
  }

  void heading();
  void key(double y);
  void listOfPorts(double y);
  void axes();
  void block(const WallPort& port);
  void grid();
  void chain(const WallPort& port);
  void ends(const WallPort& port);
  void labels(const WallPort& port);
  void portName(const WallPort& port);
  void circle(Point at, double radius);
  void square(Point at, double radius);
  void say(Point at, double size, const std::string& text, const char* anchor = "start",
           const char* weight = "normal");
  void openHalo(double width);

  const WallPlan& plan_;
  XmlWriter xml_;
  double cardWidth_ = 0;  // as drawn
  double cardHeight_ = 0;
  double top_ = 0;
};

void WallDrawing::scale() {
  const SmartScreen& screen = plan_.screen();
  const PixelSize size = plan_.size();
  const double smaller = std::min(screen.card.width, screen.card.height);
  const double fitting = std::min({kWallWidth / size.width, kWallHeight / size.height,
                                   kLargestCard / std::max(screen.card.width, screen.card.height)});
  const double seen = std::min({kWallWidth / size.width, kTallWall / size.height, kSmallestCard / smaller});
  const double factor = std::max(fitting, seen);
  // A side that is still a few points only is stretched as far as there is room.
  cardWidth_ = std::max(screen.card.width * factor, std::min(kSmallestCard, kWallWidth / screen.columns));
  cardHeight_ = std::max(screen.card.height * factor, std::min(kSmallestCard, kTallWall / screen.rows));
  top_ = 120 + kLineHeight * static_cast<double>(plan_.used().size()) + kAxisRoom;
}

bool WallDrawing::toScale() const {
  const double ratio = cardWidth_ / cardHeight_ * plan_.screen().card.height / plan_.screen().card.width;
  return std::abs(ratio - 1) < 0.05;
}

void WallDrawing::say(Point at, double size, const std::string& text, const char* anchor,
                      const char* weight) {
  xml_.element("text",
               {{"x", xmlNumber(at.x)},
                {"y", xmlNumber(at.y)},
                {"font-size", xmlNumber(size)},
                {"text-anchor", anchor},
                {"font-weight", weight}},
               text);
}

// Text that stands out from whatever lies behind it, until the element is closed.
void WallDrawing::openHalo(double width) {
  xml_.open("g", {{"paint-order", "stroke"},
                  {"stroke", "white"},
                  {"stroke-width", xmlNumber(width)},
                  {"stroke-linejoin", "round"}});
}

void WallDrawing::heading() {
  const SmartScreen& screen = plan_.screen();
  say({24, 38}, 22,
      "Wall of " + sizeText({screen.rows, screen.columns}) + " cards, front view: " + sizeText(plan_.size()) +
          " pixels",
      "start", "bold");
  say({24, 62}, 14,
      "Mode " + modeText(screen.mode) + ", cards of " + sizeText({screen.card.width, screen.card.height}) +
          " pixels, " + countText(screen.cardsPerPort, "card") + " per port, " +
          countText(plan_.used().size(), "port") + " in use" + (toScale() ? "" : "; not drawn to scale"));
}

void WallDrawing::key(double y) {
  circle({31, y - 5}, 6);
  say({44, y}, 14, "first card of a port");
  square({216, y - 5}, 6);
  say({229, y}, 14, "last card");
  if (labelled()) say({320, y}, 14, "PORT:CARD, cards counted along the cable from 0");
}

void WallDrawing::listOfPorts(double y) {
  for (const WallPort& port : plan_.used()) {
    xml_.element("rect", {{"x", "24"},
                          {"y", xmlNumber(y - 12)},
                          {"width", "14"},
                          {"height", "14"},
                          {"fill", kPortColours[port.port]},
                          {"stroke", kInk}});
    say({46, y}, 14, "port " + std::to_string(port.port), "start", "bold");
    say({112, y}, 14, countText(port.chain.size(), "card"));
    say({210, y}, 14, "window " + sizeText(port.window));
    say({400, y}, 14, "at " + pairText(port.offset));
    if (!port.duplicates.empty()) {
      const bool one = port.duplicates.size() == 1;
      say({530, y}, 14,
          (one ? "port " : "ports ") + listText(port.duplicates) +
              (one ? " repeats port " : " repeat port ") + std::to_string(port.port));
    }
    y += kLineHeight;
  }
}

// Places of an axis that get a number, in pixels: the ends, where ports begin, and others between them as far
// as there is room. `drawn`: points for a pixel.
std::set<uint32_t> ticks(uint32_t end, const std::set<uint32_t>& ports, uint32_t step, double drawn,
                         double room) {
  std::set<uint32_t> chosen{0, end};
  const auto add = [&](uint32_t pixel) {
    const auto next = chosen.lower_bound(pixel);
    const auto fits = [&](uint32_t other) { return std::abs(double{1} * pixel - other) * drawn >= room; };
    if ((next == chosen.end() || fits(*next)) && (next == chosen.begin() || fits(*std::prev(next))))
      chosen.insert(pixel);
  };
  for (const uint32_t pixel : ports) add(pixel);
  for (uint32_t pixel = step; pixel < end; pixel += step) add(pixel);
  return chosen;
}

void WallDrawing::axes() {
  std::set<uint32_t> x;
  std::set<uint32_t> y;
  const CardSize card = plan_.screen().card;
  for (const WallPort& port : plan_.used()) {
    const CardBlock block = plan_.blockOf(port);
    x.insert(block.column * card.width);
    y.insert(block.row * card.height);
  }
  xml_.open("g", {{"stroke", kInk}});
  const PixelSize size = plan_.size();
  const auto alongX = ticks(size.width, x, card.width, wallWidth() / size.width, 46);
  const auto alongY = ticks(size.height, y, card.height, wallHeight() / size.height, 18);
  for (const uint32_t pixel : alongX)
    xml_.element("path", {{"d", "M" + coordinates({drawnX(pixel), top_ - 6}) + "v6"}});
  for (const uint32_t pixel : alongY)
    xml_.element("path", {{"d", "M" + coordinates({kLeft - 6, drawnY(pixel)}) + "h6"}});
  xml_.close();
  // A wall narrower than a number has the second one to the right of it.
  const bool narrow = wallWidth() < 46;
  for (const uint32_t pixel : alongX)
    say({drawnX(pixel) + (narrow && pixel != 0 ? 6 : 0), top_ - 10}, 12, std::to_string(pixel),
        !narrow ? "middle" : (pixel == 0 ? "end" : "start"));
  for (const uint32_t pixel : alongY) say({kLeft - 10, drawnY(pixel) + 4}, 12, std::to_string(pixel), "end");
}

void WallDrawing::block(const WallPort& port) {
  const CardBlock block = plan_.blockOf(port);
  xml_.element("rect", {{"x", xmlNumber(kLeft + block.column * cardWidth_)},
                        {"y", xmlNumber(top_ + block.row * cardHeight_)},
                        {"width", xmlNumber(block.columns * cardWidth_)},
                        {"height", xmlNumber(block.rows * cardHeight_)},
                        {"fill", kPortColours[port.port]},
                        {"fill-opacity", "0.6"},
                        {"stroke", kInk},
                        {"stroke-width", "2"}});
}

void WallDrawing::grid() {
  std::string lines;
  for (unsigned column = 1; column < plan_.screen().columns; ++column)
    lines += "M" + coordinates({kLeft + column * cardWidth_, top_}) + "v" + xmlNumber(wallHeight());
  for (unsigned row = 1; row < plan_.screen().rows; ++row)
    lines += "M" + coordinates({kLeft, top_ + row * cardHeight_}) + "h" + xmlNumber(wallWidth());
  if (smallSide() < 5 || lines.empty()) return;
  xml_.element("path", {{"d", lines}, {"fill", "none"}, {"stroke", "white"}, {"stroke-width", "0.8"}});
}

// An arrow head halfway between two cards.
std::string arrowHead(Point from, Point to, double size) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  const Point along{(to.x - from.x) / length * size, (to.y - from.y) / length * size};
  const Point middle{(from.x + to.x) / 2, (from.y + to.y) / 2};
  const Point tail{middle.x - along.x / 2, middle.y - along.y / 2};
  return "M" + coordinates({middle.x + along.x, middle.y + along.y}) + "L" +
         coordinates({tail.x - along.y * 0.8, tail.y + along.x * 0.8}) + "L" +
         coordinates({tail.x + along.y * 0.8, tail.y - along.x * 0.8}) + "Z";
}

void WallDrawing::chain(const WallPort& port) {
  if (port.chain.size() < 2) return;
  std::string points;
  std::string arrows;
  const double arrow = std::clamp(smallSide() * 0.3, 2.5, 9.0);
  const auto every = static_cast<std::size_t>(std::max(1.0, std::ceil(22 / smallSide())));
  for (std::size_t i = 0; i < port.chain.size(); ++i) {
    const Point at = centre(port.chain[i]);
    points += coordinates(at) + ' ';
    if (i + 1 < port.chain.size() && i % every == every / 2)
      arrows += arrowHead(at, centre(port.chain[i + 1]), arrow);
  }
  points.pop_back();
  xml_.element("polyline", {{"points", points},
                            {"fill", "none"},
                            {"stroke", kInk},
                            {"stroke-linejoin", "round"},
                            {"stroke-width", xmlNumber(std::clamp(smallSide() * 0.05, 0.6, 2.5))}});
  if (!arrows.empty()) xml_.element("path", {{"d", arrows}, {"fill", kInk}});
}

void WallDrawing::circle(Point at, double radius) {
  xml_.element("circle", {{"cx", xmlNumber(at.x)},
                          {"cy", xmlNumber(at.y)},
                          {"r", xmlNumber(radius)},
                          {"fill", kFirst},
                          {"stroke", "white"},
                          {"stroke-width", "1.5"}});
}

void WallDrawing::square(Point at, double radius) {
  xml_.element("rect", {{"x", xmlNumber(at.x - radius)},
                        {"y", xmlNumber(at.y - radius)},
                        {"width", xmlNumber(2 * radius)},
                        {"height", xmlNumber(2 * radius)},
                        {"fill", kLast},
                        {"stroke", "white"},
                        {"stroke-width", "1.5"}});
}

void WallDrawing::ends(const WallPort& port) {
  const double radius = std::clamp(smallSide() * 0.14, 3.5, 10.0);
  // A chain of one card: both, the circle on the square.
  square(centre(port.chain.back()), port.chain.size() == 1 ? radius * 1.5 : radius);
  circle(centre(port.chain.front()), radius);
}

void WallDrawing::labels(const WallPort& port) {
  const double size = labelSize();
  openHalo(2);
  for (std::size_t i = 0; i < port.chain.size(); ++i)
    say({drawnX(port.chain[i].x) + 4, drawnY(port.chain[i].y) + size + 1}, size,
        std::to_string(port.port) + ':' + std::to_string(i));
  xml_.close();
}

// In the middle of the port's cards, where they are too small for labels of their own.
void WallDrawing::portName(const WallPort& port) {
  const CardBlock block = plan_.blockOf(port);
  const double width = block.columns * cardWidth_;
  const double height = block.rows * cardHeight_;
  const bool narrow = width < 64;
  const double size = std::clamp(std::min(narrow ? width : width / 5, height / 2), 10.0, 24.0);
  const Point middle{kLeft + block.column * cardWidth_ + width / 2,
                     top_ + block.row * cardHeight_ + height / 2 + size * 0.36};
  openHalo(size / 4);
  say(middle, size, (narrow ? "" : "port ") + std::to_string(port.port), "middle", "bold");
  xml_.close();
}

std::string WallDrawing::draw() {
  const double width = std::max(kNarrowest, kLeft + wallWidth() + kRight);
  const double height = top_ + wallHeight() + 30;
  xml_.open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                    {"width", xmlNumber(width)},
                    {"height", xmlNumber(height)},
                    {"viewBox", "0 0 " + xmlNumber(width) + ' ' + xmlNumber(height)},
                    {"font-family", "DejaVu Sans, Verdana, Arial, sans-serif"},
                    {"fill", kInk}});
  xml_.element("rect", {{"width", "100%"}, {"height", "100%"}, {"fill", "white"}});
  heading();
  key(88);
  listOfPorts(116);
  axes();
  for (const WallPort& port : plan_.used()) block(port);
  grid();
  for (const WallPort& port : plan_.used()) {
    chain(port);
    ends(port);
    if (labelled())
      labels(port);
    else
      portName(port);
  }
  xml_.close();
  return xml_.text();
}

}  // namespace

std::string wallSvg(const WallPlan& plan) {
  return WallDrawing(plan).draw();
}

}  // namespace parlctl
