// The cables of a wall, as a sheet to print and as a list.
#include <algorithm>
#include <cmath>

#include "svgsheet.h"
#include "values.h"
#include "wallpicture.h"

namespace parlctl {

namespace {

constexpr double kMargin = 40;
constexpr double kSheetWidth = 1080;
constexpr double kControllerTop = 96;
constexpr double kControllerHeight = 56;
constexpr double kPortWidth = 64;
constexpr double kCableRoom = 90;  // between controller and wall
constexpr double kWallHeight = 620;
constexpr double kLargestCard = 90;
constexpr double kListLine = 22;

std::vector<WallPort> shownPorts(const WallPlan& plan, const WiringView& view) {
  std::vector<WallPort> ports = plan.used();
  std::erase_if(ports, [&](const WallPort& port) { return view.port && *view.port != port.port; });
  return ports;
}

// Rows count from the top, columns from the left of the viewer, both from 1.
std::string placeText(const WallPlan& plan, Pixel card, const WiringView& view) {
  const uint32_t column = plan.columnOf(card);
  return "row " + std::to_string(plan.rowOf(card) + 1) + ", column " +
         std::to_string(view.rear ? plan.columns() - column : column + 1);
}

// Which way the cable runs from one card to the next, as the viewer sees it.
std::string direction(Pixel from, Pixel to, const WiringView& view) {
  if (to.y != from.y) return to.y > from.y ? "down" : "up";
  return (to.x > from.x) != view.rear ? "right" : "left";
}

// "right, down, left, ... in 4 lines of 6"
std::string runText(const WallPort& port, const WiringView& view) {
  if (port.chain.size() == 1) return "one card";
  const std::string lines =
      countText(port.cable.lines, "line") + " of " + std::to_string(port.cable.lineLength);
  std::string text;
  std::string last;
  unsigned turns = 0;
  for (std::size_t i = 0; i + 1 < port.chain.size(); ++i) {
    const std::string next = direction(port.chain[i], port.chain[i + 1], view);
    if (next == last) continue;
    if (++turns > 4) return lines + ": " + text + ", ...";
    text += (text.empty() ? "" : ", ") + next;
    last = next;
  }
  return lines + ": " + text;
}

struct CableRow {
  std::string from;
  std::string to;
  std::string cards;
  std::string run;
  std::string end;
};

CableRow cableRow(const WallPlan& plan, const WallPort& port, const WiringView& view) {
  return {"port " + std::to_string(port.port), placeText(plan, port.chain.front(), view),
          std::to_string(port.chain.size()), runText(port, view), placeText(plan, port.chain.back(), view)};
}

std::string viewText(const WiringView& view) {
  return view.rear ? "REAR view: standing behind the wall" : "FRONT view: looking at the picture";
}

// Where the wall lies on the sheet.
class WiringLayout {
 public:
  WiringLayout(const WallPlan& plan, const WiringView& view) : plan_(plan), rear_(view.rear) {
    const double width = kSheetWidth - 2 * kMargin;
    scale_ = std::min({width / plan.size().width, kWallHeight / plan.size().height,
                       kLargestCard / std::max(plan.card().width, plan.card().height)});
    left_ = (kSheetWidth - plan.size().width * scale_) / 2;
  }
  double top() const { return kControllerTop + kControllerHeight + kCableRoom; }
  double bottom() const { return top() + plan_.size().height * scale_; }
  double cardWidth() const { return plan_.card().width * scale_; }
  double cardHeight() const { return plan_.card().height * scale_; }
  double smallSide() const { return std::min(cardWidth(), cardHeight()); }
  double length(uint32_t pixels) const { return pixels * scale_; }
  Point corner(const PixelBox& box) const {
    const double x = rear_ ? plan_.size().width - box.right() : box.at.x;
    return {left_ + x * scale_, top() + box.at.y * scale_};
  }
  Point centre(Pixel card) const {
    const Point at = corner({card, {plan_.card().width, plan_.card().height}});
    return {at.x + cardWidth() / 2, at.y + cardHeight() / 2};
  }
  // Middle of a port's socket, at the controller's lower edge.
  Point socket(unsigned port) const {
    const double first = (kSheetWidth - ORVE_MCUC::kMappedPorts * kPortWidth) / 2;
    return {first + (port + 0.5) * kPortWidth, kControllerTop + kControllerHeight};
  }

 private:
  const WallPlan& plan_;
  bool rear_;
  double scale_ = 1;
  double left_ = 0;
};

void drawController(SvgSheet& sheet, const WallPlan& plan, const WiringLayout& layout) {
  const double width = ORVE_MCUC::kMappedPorts * kPortWidth + 24;
  sheet.box({(kSheetWidth - width) / 2, kControllerTop}, width, kControllerHeight, "#eeeeee", 1, 2);
  sheet.text({kSheetWidth / 2, kControllerTop + 18}, "CONTROLLER, output ports",
             {.size = 13, .anchor = "middle"});
  for (const WallPort& port : plan.ports()) {
    const Point at = layout.socket(port.port);
    sheet.box({at.x - 22, at.y - 30}, 44, 30, port.used ? portColour(port.port) : "white", 0.7, 1);
    sheet.text({at.x, at.y - 9}, std::to_string(port.port),
               {.size = 16, .anchor = "middle", .weight = "bold"});
  }
}

// From the socket down to a height of its own, across, down in a lane of its own, and into the first card.
void drawCable(SvgSheet& sheet, const WiringLayout& layout, const WallPort& port) {
  const Point from = layout.socket(port.port);
  const Point to = layout.centre(port.chain.front());
  const double height = from.y + 16 + 5.5 * port.port;
  const double lane = to.x + layout.cardWidth() * 0.08 * (port.port - (ORVE_MCUC::kMappedPorts - 1) / 2.0);
  const std::array<Point, 5> corners{from, Point{from.x, height}, Point{lane, height}, Point{lane, to.y}, to};
  sheet.dashes(lineThrough(corners), "black", 2.5, "8 3");
}

// The number on the first card, where it does not hide under its mark.
void drawCableName(SvgSheet& sheet, const WiringLayout& layout, const WallPort& port) {
  const Point to = layout.centre(port.chain.front());
  const double size = std::clamp(layout.smallSide() * 0.2, 10.0, 13.0);
  sheet.beginHalo(4);
  sheet.text({to.x, to.y + std::clamp(layout.smallSide() * 0.16, 3.5, 12.0) + size + 1},
             "cable " + std::to_string(port.port), {.size = size, .anchor = "middle", .weight = "bold"});
  sheet.endHalo();
}

void drawBlock(SvgSheet& sheet, const WallPlan& plan, const WiringLayout& layout, const WallPort& port) {
  const PixelBox box = plan.boxOf(port);
  sheet.box(layout.corner(box), layout.length(box.size.width), layout.length(box.size.height),
            portColour(port.port), 0.45, 2);
  if (layout.smallSide() < 6) return;
  for (const Pixel card : port.chain)
    sheet.box(layout.corner({card, {plan.card().width, plan.card().height}}), layout.cardWidth(),
              layout.cardHeight(), "none", 1, 0.4);
}

void drawRun(SvgSheet& sheet, const WiringLayout& layout, const WallPort& port) {
  const double side = layout.smallSide();
  const auto every = static_cast<std::size_t>(std::ceil(std::max(1.0, 22 / side)));
  std::vector<Point> points;
  std::string arrows;
  for (const Pixel card : port.chain) {
    points.push_back(layout.centre(card));
    const std::size_t hop = points.size() - 2;
    if (points.size() > 1 && hop % every == every / 2)
      arrows += arrowHead(points[hop], points.back(), std::clamp(side * 0.25, 2.5, 8.0));
  }
  sheet.polyline(points, std::clamp(side * 0.05, 0.6, 2.5));
  sheet.fill(arrows);
  const double radius = std::clamp(side * 0.16, 3.5, 12.0);
  sheet.square(points.back(), radius, "#d4141c");
  sheet.dot(points.front(), radius, "#0a8f3c");
  if (side < 26) return;
  sheet.beginHalo(3);
  for (std::size_t i = 0; i < points.size(); ++i)
    sheet.text({points[i].x - layout.cardWidth() / 2 + 3, points[i].y - layout.cardHeight() / 2 + 12},
               std::to_string(i), {.size = 11});
  sheet.endHalo();
}

void drawList(SvgSheet& sheet, const WallPlan& plan, const std::vector<WallPort>& ports,
              const WiringView& view, double y) {
  constexpr std::array<double, 6> kColumns{kMargin, 110, 200, 400, 470, 820};
  const std::array<const char*, 6> titles{"cable", "from",        "to the first card",
                                          "cards", "how it runs", "last card"};
  for (std::size_t i = 0; i < titles.size(); ++i) sheet.text({kColumns[i], y}, titles[i], {.weight = "bold"});
  for (const WallPort& port : ports) {
    y += kListLine;
    const CableRow row = cableRow(plan, port, view);
    const std::array<std::string, 6> cells{
        std::to_string(port.port), row.from, row.to, row.cards, row.run, row.end};
    for (std::size_t i = 0; i < cells.size(); ++i) sheet.text({kColumns[i], y}, cells[i]);
  }
}

void drawTitle(SvgSheet& sheet, const WallPlan& plan, const WiringView& view) {
  sheet.text({kMargin, 40}, viewText(view), {.size = 24, .weight = "bold"});
  sheet.text({kMargin, 66},
             "Wiring of a wall of " + sizeText({plan.rows(), plan.columns()}) + " cards, " +
                 sizeText(plan.size()) +
                 " pixels; row 1 is the top row, column 1 the left one as seen here; cards count from 0");
  sheet.text({kMargin, 86}, "dot: first card of a port, square: last card");
}

}  // namespace

std::string wiringSvg(const WallPlan& plan, const WiringView& view) {
  const WiringLayout layout(plan, view);
  const std::vector<WallPort> ports = shownPorts(plan, view);
  const double listTop = layout.bottom() + 70;
  SvgSheet sheet(kSheetWidth, listTop + kListLine * static_cast<double>(ports.size()) + kMargin);
  drawTitle(sheet, plan, view);
  for (const WallPort& port : ports) drawBlock(sheet, plan, layout, port);
  for (const WallPort& port : ports) drawCable(sheet, layout, port);
  for (const WallPort& port : ports) drawRun(sheet, layout, port);
  for (const WallPort& port : ports) drawCableName(sheet, layout, port);
  drawController(sheet, plan, layout);
  sheet.text({kSheetWidth / 2, layout.bottom() + 30}, view.rear ? "REAR" : "FRONT",
             {.size = 20, .anchor = "middle", .weight = "bold"});
  drawList(sheet, plan, ports, view, listTop);
  return sheet.finish();
}

std::string wiringText(const WallPlan& plan, const WiringView& view) {
  std::string text = viewText(view) + "; row 1 is the top row, column 1 the left\none as seen from there";
  for (const WallPort& port : shownPorts(plan, view)) {
    const CableRow row = cableRow(plan, port, view);
    text += "\n\ncable " + std::to_string(port.port) + "  controller " + row.from + " to " + row.to + ", " +
            row.cards + " cards\n         " + row.run + "\n         ends at " + row.end;
  }
  return text;
}

}  // namespace parlctl
