#include "plot.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace parlctl {

namespace {

constexpr double kWidth = 1180;
constexpr double kLeft = 86;
constexpr double kRight = kWidth - 36;
constexpr double kTop = 58;
constexpr double kBottom = 500;
constexpr double kLegendTop = kBottom + 78;
constexpr double kLegendLine = 24;
constexpr double kLegendColumn = 365;
constexpr int kLegendColumns = 3;
constexpr double kSample = 44;  // width of a sample of the legend
constexpr double kNoteLine = 20;
constexpr double kHatchDistance = 9;
constexpr const char* kGrid = "#d9d9d9";
constexpr const char* kHatch = "#8a8a8a";

// Multiples of the axis' step between its ends. The step is widened when it would crowd the axis.
template <class Use>
void forEachNumber(const PlotAxis& axis, Use use) {
  constexpr double kMost = 60;
  const double step = std::max(axis.step, (axis.high - axis.low) / kMost);
  if (!(step > 0)) return;
  for (double k = std::ceil(axis.low / step - 1e-9); k * step <= axis.high + step * 1e-9; ++k)
    use(k * step, axis.number ? axis.number(k * step) : xmlNumber(k * step));
}

// Where a slanting line that enters the box from the left edge's side runs inside of it.
std::string hatchLine(Point corner, double width, double height, double shift, bool rising) {
  const double begin = std::max(0.0, shift - height);
  const double end = std::min(width, shift);
  if (end <= begin) return {};
  const auto at = [&](double x) {
    const double down = shift - x;
    return Point{corner.x + x, corner.y + (rising ? down : height - down)};
  };
  const std::array<Point, 2> ends{at(begin), at(end)};
  return lineThrough(ends);
}

void hatch(SvgSheet& sheet, Point corner, double width, double height, Hatching hatching) {
  if (hatching == Hatching::None) return;
  std::string path;
  for (double shift = kHatchDistance; shift < width + height; shift += kHatchDistance)
    path += hatchLine(corner, width, height, shift, hatching == Hatching::Rising);
  sheet.lines(path, kHatch, 0.8);
}

}  // namespace

void Plot::spans(const std::string& name, std::vector<PlotSpan> spans) {
  for (const PlotSpan& span : spans)
    areas_.push_back({span.from, span.to, y_.low, y_.high, span.colour, span.hatching, false});
  if (!spans.empty()) keys_.push_back({name, areas_.back()});
}

void Plot::bands(const std::string& name, const char* colour, Hatching hatching,
                 std::vector<PlotBand> bands) {
  for (const PlotBand& band : bands)
    areas_.push_back({band.from, band.to, band.low, band.high, colour, hatching, true});
  if (!bands.empty()) keys_.push_back({name, areas_.back()});
}

double Plot::xOf(double value) const {
  return kLeft + (std::clamp(value, x_.low, x_.high) - x_.low) / (x_.high - x_.low) * (kRight - kLeft);
}

double Plot::yOf(double value) const {
  return kBottom - (std::clamp(value, y_.low, y_.high) - y_.low) / (y_.high - y_.low) * (kBottom - kTop);
}

double Plot::height() const {
  const auto named = std::count_if(curves_.begin(), curves_.end(),
                                   [](const PlotCurve& curve) { return !curve.name.empty(); });
  const double entries = static_cast<double>(keys_.size()) + static_cast<double>(named);
  return kLegendTop + std::ceil(entries / kLegendColumns) * kLegendLine +
         static_cast<double>(notes_.size()) * kNoteLine + 14;
}

void Plot::drawArea(SvgSheet& sheet, const Area& area) const {
  const Point corner{xOf(area.from), yOf(area.high)};
  const double width = xOf(area.to) - corner.x;
  const double height = yOf(area.low) - corner.y;
  sheet.box(corner, width, height, area.colour, 1, area.edged ? 0.8 : 0);
  hatch(sheet, corner, width, height, area.hatching);
}

void Plot::drawAxes(SvgSheet& sheet) const {
  std::string grid;
  forEachNumber(x_, [&](double value, const std::string& words) {
    grid += lineDown({xOf(value), kTop}, kBottom - kTop);
    sheet.text({xOf(value), kBottom + 20}, words, {.size = 13, .anchor = "middle"});
  });
  forEachNumber(y_, [&](double value, const std::string& words) {
    grid += lineRight({kLeft, yOf(value)}, kRight - kLeft);
    sheet.text({kLeft - 9, yOf(value) + 4.5}, words, {.size = 13, .anchor = "end"});
  });
  sheet.lines(grid, kGrid, 1);
  sheet.text({(kLeft + kRight) / 2, kBottom + 44}, x_.title, {.size = 14, .anchor = "middle"});
  sheet.upright({26, (kTop + kBottom) / 2}, y_.title, {.size = 14, .anchor = "middle"});
  sheet.lines(lineDown({kLeft, kTop}, kBottom - kTop) + lineRight({kLeft, kBottom}, kRight - kLeft),
              "#1a1a1a", 1.5);
}

void Plot::drawCurves(SvgSheet& sheet) const {
  for (const PlotCurve& curve : curves_) {
    std::vector<Point> points;
    for (const Point point : curve.points) points.push_back({xOf(point.x), yOf(point.y)});
    sheet.dashes(lineThrough(points), curve.colour, curve.width, curve.dashes);
  }
  sheet.beginHalo(4);
  for (const auto& [at, words] : marks_) {
    const bool left = xOf(at.x) > kRight - 90;
    sheet.text({xOf(at.x) + (left ? -8 : 8), yOf(at.y) + 18}, words,
               {.size = 12.5, .anchor = left ? "end" : "start"});
  }
  sheet.endHalo();
  for (const auto& [at, words] : marks_) sheet.dot({xOf(at.x), yOf(at.y)}, 4, "#1a1a1a");
}

void Plot::drawLegend(SvgSheet& sheet) const {
  int place = 0;
  const auto next = [&] {
    const Point at{kLeft + place % kLegendColumns * kLegendColumn,
                   kLegendTop + place / kLegendColumns * kLegendLine};
    ++place;
    return at;
  };
  const auto name = [&](Point at, const std::string& words) {
    sheet.text({at.x + kSample + 10, at.y + 4.5}, words, {.size = 13});
  };
  for (const PlotCurve& curve : curves_) {
    if (curve.name.empty()) continue;
    const Point at = next();
    sheet.dashes(lineRight(at, kSample), curve.colour, curve.width, curve.dashes);
    name(at, curve.name);
  }
  for (const Key& key : keys_) {
    const Point at = next();
    sheet.box({at.x, at.y - 8}, kSample, 16, key.look.colour, 1, 0.8);
    hatch(sheet, {at.x, at.y - 8}, kSample, 16, key.look.hatching);
    name(at, key.name);
  }
  double down = kLegendTop + (place + kLegendColumns - 1) / kLegendColumns * kLegendLine + 6;
  for (const std::string& words : notes_) {
    sheet.text({kLeft, down}, words, {.size = 12.5});
    down += kNoteLine;
  }
}

std::string Plot::svg() const {
  SvgSheet sheet(kWidth, height());
  sheet.text({kLeft, 32}, title_, {.size = 19, .weight = "bold"});
  for (const Area& area : areas_) drawArea(sheet, area);
  drawAxes(sheet);
  drawCurves(sheet);
  drawLegend(sheet);
  return sheet.finish();
}

}  // namespace parlctl
