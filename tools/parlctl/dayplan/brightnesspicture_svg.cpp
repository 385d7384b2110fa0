#include <algorithm>
#include <cstdio>

#include "brightnesspicture.h"
#include "plot.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;
using map::BrightnessReason;

constexpr double kHour = 3600;
constexpr const char* kDayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kFixedColour = "#e3eefa";
constexpr const char* kAmbientColour = "#fbeccb";
constexpr const char* kNoneColour = "#f3f3f3";
constexpr const char* kBandColour = "#f0cf86";
constexpr const char* kCurveColour = "#0b4a8f";

struct Line {
  const char* colour;
  const char* dashes;
};
constexpr Line kPortLines[] = {
    {kCurveColour, "none"}, {"#a0410d", "9 4"}, {"#2e6b2e", "3 3"}, {"#6a3d9a", "12 3 3 3"}};

double percent(unsigned brightness) {
  return brightness * 100.0 / 255;
}

std::string hourText(double hours) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d:00", static_cast<int>(hours));
  return text;
}

std::vector<PlotSpan> spansOf(const std::vector<SlotSpan>& spans, SlotKind kind, const char* colour,
                              Hatching hatching) {
  std::vector<PlotSpan> result;
  for (const SlotSpan& span : spans) {
    if (span.kind != kind) continue;
    if (!result.empty() && result.back().to * kHour >= span.from - 0.5)
      result.back().to = span.to / kHour;
    else
      result.push_back({span.from / kHour, span.to / kHour, colour, hatching});
  }
  return result;
}

std::vector<Point> mapPoints(const BrightnessPlan& plan) {
  std::vector<Point> points;
  if (plan.mode == record::kAutomatic) {
    const int top = std::max(1, plan.table.maxLux + plan.table.maxLux / 10);
    for (int lux = 0; lux <= std::min(top, 0xFFFF); lux += std::max(1, top / 2000)) {
      const auto value = map::LuxToBrightnessLookupTable(plan.table, static_cast<uint16_t>(lux));
      if (value) points.push_back({double(lux), percent(*value)});
    }
    return points;
  }
  map::LuxMap points_;
  for (const auto& point : plan.map)
    if (points_.items < points_.points.size()) points_.points[points_.items++] = point;
  const int last = plan.map.empty() ? 0 : plan.map.back().lux;
  const int top = std::min(0xFFFF, last + last / 10 + 1);
  for (int lux = 0; lux <= top; lux += std::max(1, top / 2000)) {
    const auto value = map::MixAdjLuxToBriLookupTable(points_, static_cast<uint16_t>(lux));
    if (value) points.push_back({double(lux), double(*value)});
  }
  return points;
}

// A step for some ten numbers.
double niceStep(double range) {
  double step = 1;
  while (range / step > 12) step *= range / step > 50 ? 10 : range / step > 25 ? 5 : 2;
  return step;
}

}  // namespace

// Where nothing is known of the brightness: the light decides, and was not given.
bool BrightnessPicture::unknownAt(int second) const {
  if (lit_) return false;
  const auto span =
      std::find_if(spans_.begin(), spans_.end(), [&](const SlotSpan& each) { return second < each.to; });
  return span != spans_.end() && span->kind == SlotKind::Ambient;
}

// A curve ends where the brightness becomes unknown, and another begins behind it. The first has the name.
void BrightnessPicture::addCurves(Plot& plot, unsigned port, std::string name) const {
  PlotCurve curve{std::move(name), {}, kPortLines[port].colour, kPortLines[port].dashes};
  const auto endCurve = [&] {
    if (curve.points.empty()) return;
    plot.curve(curve);
    curve.points.clear();
    curve.name.clear();
  };
  const int all = days_ * 24 * 3600;
  for (std::size_t i = 0; i < steps_.size() && steps_[i].at < all; ++i) {
    const int to = i + 1 < steps_.size() ? std::min(all, steps_[i + 1].at) : all;
    int end = to;
    for (const SlotSpan& span : spans_)
      if (unknownAt(span.from) && span.from >= steps_[i].at) end = std::min(end, span.from);
    const double height = percent(steps_[i].ports[port]);
    if (!unknownAt(steps_[i].at)) {
      curve.points.push_back({steps_[i].at / kHour, height});
      curve.points.push_back({end / kHour, height});
    }
    if (end < to) endCurve();
  }
  endCurve();
}

void BrightnessPicture::addGround(Plot& plot) const {
  plot.spans("fixed brightness", spansOf(spans_, SlotKind::Fixed, kFixedColour, Hatching::None));
  plot.spans("follows the light", spansOf(spans_, SlotKind::Ambient, kAmbientColour, Hatching::Rising));
  plot.spans("no automatic brightness", spansOf(spans_, SlotKind::None, kNoneColour, Hatching::Falling));
  if (lit_) return;
  std::vector<PlotBand> bands;
  const auto [low, high] = lightRange();
  for (const PlotSpan& span : spansOf(spans_, SlotKind::Ambient, "", Hatching::None))
    bands.push_back({span.from, span.to, low, high});
  if (!bands.empty())
    plot.note("No light was given: slots that follow it are shown as what their map reaches.");
  plot.bands("between the ends of the map", kBandColour, Hatching::Falling, bands);
}

std::string BrightnessPicture::svg() const {
  PlotAxis x{days_ == 1 ? "time of day" : "day, from midnight", 0, days_ * 24.0, days_ == 1 ? 2.0 : 24.0,
             &hourText};
  if (days_ > 1)
    x.number = [first = map::momentOf(midnight_).weekday](double hour) {
      return std::string(kDayNames[(first - 1 + static_cast<int>(hour / 24 + 0.5)) % 7]);
    };
  Plot plot(title(), x, {"brightness, % of 255", 0, 100, 10});
  addGround(plot);
  const unsigned ports = portsDiffer() ? record::kNodePortCount : 1;
  for (unsigned port = 0; port < ports; ++port)
    addCurves(plot, port, ports == 1 ? "brightness sent" : "port " + std::to_string(port));
  return plot.svg();
}

std::string luxCurveSvg(const BrightnessPlan& plan) {
  const auto points = mapPoints(plan);
  const double top = points.empty() ? 1000 : std::max(1.0, points.back().x);
  Plot plot(std::string("Brightness by light, ") + modeName(plan.mode) + " plan",
            {"light, lux", 0, top, niceStep(top)}, {"brightness, % of 255", 0, 100, 10});
  plot.curve({"brightness", points, kCurveColour});
  if (plan.mode != record::kAutomatic)
    for (const auto& point : plan.map)
      plot.mark({double(point.lux), double(std::min<int>(point.percent, 100))},
                std::to_string(point.lux) + " lux");
  if (plan.fallback.enabled) {
    const double height = std::min<int>(plan.fallback.percent, 100);
    plot.curve({"when the sensors fail", {{0, height}, {top, height}}, "#a0410d", "8 5"});
  }
  return plot.svg();
}

std::string luxCurveText(const BrightnessPlan& plan) {
  const auto points = mapPoints(plan);
  if (points.empty()) return "no table of light in a " + std::string(modeName(plan.mode)) + " plan";
  constexpr std::size_t kRows = 20;
  std::string text = std::string("light to brightness, ") + modeName(plan.mode) + " plan";
  const std::size_t step = std::max<std::size_t>(1, points.size() / kRows);
  for (std::size_t i = 0; i < points.size(); i += step) {
    char line[32];
    std::snprintf(line, sizeof line, "\n  %6.0f lux %3.0f %% ", points[i].x, points[i].y);
    text += line + std::string(static_cast<std::size_t>(points[i].y / 2), '#');
  }
  return text;
}

}  // namespace parlctl
