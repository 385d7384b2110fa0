// A sheet to draw on, which becomes an SVG document.
#pragma once

#include <span>
#include <string>

#include "xmlwriter.h"

namespace parlctl {

struct Point {
  double x = 0;
  double y = 0;
};

struct TextStyle {
  double size = 14;
  const char* anchor = "start";
  const char* weight = "normal";
};

// Colours are as SVG has them; lines and letters are in ink.
class SvgSheet {
 public:
  SvgSheet(double width, double height);
  std::string finish();

  void text(Point at, const std::string& words, TextStyle style = {});
  // Read from the bottom to the top.
  void upright(Point at, const std::string& words, TextStyle style = {});
  // What is written from here to the end stands out from whatever lies behind it.
  void beginHalo(double width);
  void endHalo() { xml_.close(); }

  void box(Point at, double width, double height, const char* fill, double opacity, double edge);
  void dot(Point at, double radius, const char* fill);
  void square(Point at, double radius, const char* fill);
  void polyline(std::span<const Point> points, double width);
  // Commands of a path, of lines or to be filled; nothing when there are none.
  void lines(const std::string& path, const char* colour, double width);
  // A line in pieces: lengths of strokes and gaps in turn ("6 3"), or none for a whole one.
  void dashes(const std::string& path, const char* colour, double width, const char* lengths);
  void fill(const std::string& path);

 private:
  XmlWriter xml_;
};

// A line through points, as commands of a path; nothing for none.
std::string lineThrough(std::span<const Point> points);
// Pieces of a path: a line to the right or downwards, and an arrow head halfway between two points.
std::string lineRight(Point from, double length);
std::string lineDown(Point from, double length);
std::string arrowHead(Point from, Point to, double size);

}  // namespace parlctl
