#include "svgsheet.h"

#include <cmath>

namespace parlctl {

namespace {

constexpr const char* kInk = "#1a1a1a";

std::string coordinates(Point at) {
  return xmlNumber(at.x) + ',' + xmlNumber(at.y);
}

}  // namespace

SvgSheet::SvgSheet(double width, double height) {
  xml_.open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                    {"width", xmlNumber(width)},
                    {"height", xmlNumber(height)},
                    {"viewBox", "0 0 " + xmlNumber(width) + ' ' + xmlNumber(height)},
                    {"font-family", "DejaVu Sans, Verdana, Arial, sans-serif"},
                    {"fill", kInk}});
  xml_.element("rect", {{"width", "100%"}, {"height", "100%"}, {"fill", "white"}});
}

std::string SvgSheet::finish() {
  xml_.close();
  return xml_.text();
}

void SvgSheet::text(Point at, const std::string& words, TextStyle style) {
  xml_.element("text",
               {{"x", xmlNumber(at.x)},
                {"y", xmlNumber(at.y)},
                {"font-size", xmlNumber(style.size)},
                {"text-anchor", style.anchor},
                {"font-weight", style.weight}},
               words);
}

void SvgSheet::upright(Point at, const std::string& words, TextStyle style) {
  xml_.element("text",
               {{"transform", "translate(" + coordinates(at) + ") rotate(-90)"},
                {"font-size", xmlNumber(style.size)},
                {"text-anchor", style.anchor},
                {"font-weight", style.weight}},
               words);
}

void SvgSheet::beginHalo(double width) {
  xml_.open("g", {{"paint-order", "stroke"},
                  {"stroke", "white"},
                  {"stroke-width", xmlNumber(width)},
                  {"stroke-linejoin", "round"}});
}

void SvgSheet::box(Point at, double width, double height, const char* fill, double opacity, double edge) {
  xml_.element("rect", {{"x", xmlNumber(at.x)},
                        {"y", xmlNumber(at.y)},
                        {"width", xmlNumber(width)},
                        {"height", xmlNumber(height)},
                        {"fill", fill},
                        {"fill-opacity", xmlNumber(opacity)},
                        {"stroke", kInk},
                        {"stroke-width", xmlNumber(edge)}});
}

void SvgSheet::dot(Point at, double radius, const char* fill) {
  xml_.element("circle", {{"cx", xmlNumber(at.x)},
                          {"cy", xmlNumber(at.y)},
                          {"r", xmlNumber(radius)},
                          {"fill", fill},
                          {"stroke", "white"},
                          {"stroke-width", "1.5"}});
}

void SvgSheet::square(Point at, double radius, const char* fill) {
  xml_.element("rect", {{"x", xmlNumber(at.x - radius)},
                        {"y", xmlNumber(at.y - radius)},
                        {"width", xmlNumber(2 * radius)},
                        {"height", xmlNumber(2 * radius)},
                        {"fill", fill},
                        {"stroke", "white"},
                        {"stroke-width", "1.5"}});
}

void SvgSheet::polyline(std::span<const Point> points, double width) {
  std::string list;
  for (const Point point : points) list += (list.empty() ? "" : " ") + coordinates(point);
  xml_.element("polyline", {{"points", list},
                            {"fill", "none"},
                            {"stroke", kInk},
                            {"stroke-linejoin", "round"},
                            {"stroke-width", xmlNumber(width)}});
}

void SvgSheet::lines(const std::string& path, const char* colour, double width) {
  if (path.empty()) return;
  xml_.element("path",
               {{"d", path}, {"fill", "none"}, {"stroke", colour}, {"stroke-width", xmlNumber(width)}});
}

void SvgSheet::dashes(const std::string& path, const char* colour, double width, const char* lengths) {
  if (path.empty()) return;
  xml_.element("path", {{"d", path},
                        {"fill", "none"},
                        {"stroke", colour},
                        {"stroke-linejoin", "round"},
                        {"stroke-dasharray", lengths},
                        {"stroke-width", xmlNumber(width)}});
}

void SvgSheet::fill(const std::string& path) {
  if (!path.empty()) xml_.element("path", {{"d", path}, {"fill", kInk}});
}

std::string lineThrough(std::span<const Point> points) {
  std::string path;
  for (const Point point : points) path += (path.empty() ? "M" : "L") + coordinates(point);
  return path;
}

std::string lineRight(Point from, double length) {
  return "M" + coordinates(from) + "h" + xmlNumber(length);
}

std::string lineDown(Point from, double length) {
  return "M" + coordinates(from) + "v" + xmlNumber(length);
}

std::string arrowHead(Point from, Point to, double size) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  const Point along{(to.x - from.x) / length * size, (to.y - from.y) / length * size};
  const Point middle{(from.x + to.x) / 2, (from.y + to.y) / 2};
  const Point tail{middle.x - along.x / 2, middle.y - along.y / 2};
  return "M" + coordinates({middle.x + along.x, middle.y + along.y}) + "L" +
         coordinates({tail.x - along.y * 0.8, tail.y + along.x * 0.8}) + "L" +
         coordinates({tail.x + along.y * 0.8, tail.y - along.x * 0.8}) + "Z";
}

}  // namespace parlctl
