// A plot of curves over two axes with numbers, units and a legend, as an SVG document. Curves differ in their
// dashes and areas in their hatching, so that a grey print tells them apart as well.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "svgsheet.h"

namespace parlctl {

// An axis from low to high with a number at every multiple of step; the title names the unit.
struct PlotAxis {
  std::string title;
  double low = 0;
  double high = 1;
  double step = 1;
  std::function<std::string(double value)> number{};  // none: as short as the value is
};

struct PlotCurve {
  std::string name;  // in the legend; empty: not there
  std::vector<Point> points;
  const char* colour = "#1a1a1a";
  const char* dashes = "none";  // as SvgSheet::dashes has them
  double width = 2.5;
};

enum class Hatching { None, Rising, Falling };

// Ground under the curves, from the lower to the upper edge of the plot.
struct PlotSpan {
  double from = 0;
  double to = 0;
  const char* colour = "#eeeeee";
  Hatching hatching = Hatching::None;
};

// What lies between two heights over a part of the x axis.
struct PlotBand {
  double from = 0;
  double to = 0;
  double low = 0;
  double high = 0;
};

class Plot {
 public:
  Plot(std::string title, PlotAxis x, PlotAxis y)
      : title_(std::move(title)), x_(std::move(x)), y_(std::move(y)) {}

  // Spans and bands of one kind have one name in the legend.
  void spans(const std::string& name, std::vector<PlotSpan> spans);
  void bands(const std::string& name, const char* colour, Hatching hatching, std::vector<PlotBand> bands);
  void curve(PlotCurve curve) { curves_.push_back(std::move(curve)); }
  // Points that stand out, each with a word beside it.
  void mark(Point at, std::string words) { marks_.emplace_back(at, std::move(words)); }
  // A line of small print under the legend.
  void note(std::string words) { notes_.push_back(std::move(words)); }

  std::string svg() const;

 private:
  struct Area {
    double from, to, low, high;
    const char* colour;
    Hatching hatching;
    bool edged;
  };
  struct Key {
    std::string name;
    Area look;
  };

  double xOf(double value) const;
  double yOf(double value) const;
  double height() const;
  void drawArea(SvgSheet& sheet, const Area& area) const;
  void drawAxes(SvgSheet& sheet) const;
  void drawCurves(SvgSheet& sheet) const;
  void drawLegend(SvgSheet& sheet) const;

  std::string title_;
  PlotAxis x_;
  PlotAxis y_;
  std::vector<Area> areas_;
  std::vector<Key> keys_;
  std::vector<PlotCurve> curves_;
  std::vector<std::pair<Point, std::string>> marks_;
  std::vector<std::string> notes_;
};

}  // namespace parlctl
