// A test pattern on a wall, true to scale.
#include <algorithm>
#include <cmath>
#include <vector>

#include "mcucdatablock.h"
#include "patternplan.h"
#include "svgsheet.h"
#include "xmlwriter.h"

namespace parlctl {

namespace {

namespace pattern = ORVE_MCUC::pattern;

constexpr double kLeft = 80;
constexpr double kTop = 92;
constexpr double kWidest = 1040;
constexpr double kHighest = 640;
constexpr double kNarrowest = 420;  // the title and the legend need as much
constexpr uint32_t kMostIntervals = 50;

// Neighbouring lit pixels of a row, and of the rows below that have the same ones.
struct Run {
  uint32_t from, to;
};
using Runs = std::vector<Run>;

Runs runsOf(const PatternBytes& image, uint32_t row, uint32_t width) {
  Runs runs;
  for (uint32_t x = 0; x < width; ++x) {
    if (!ORVE_MCUC::patternLights(image, static_cast<uint16_t>(x), static_cast<uint16_t>(row))) continue;
    if (!runs.empty() && runs.back().to == x)
      ++runs.back().to;
    else
      runs.push_back({x, x + 1});
  }
  return runs;
}

bool same(const Runs& a, const Runs& b) {
  return std::ranges::equal(a, b, [](Run x, Run y) { return x.from == y.from && x.to == y.to; });
}

std::string rectangles(const Runs& runs, uint32_t from, uint32_t to, double scale) {
  std::string path;
  for (const Run run : runs) {
    const std::string width = xmlNumber((run.to - run.from) * scale);
    path += 'M' + xmlNumber(kLeft + run.from * scale) + ' ' + xmlNumber(kTop + from * scale) + 'h' + width +
            'v' + xmlNumber((to - from) * scale) + "h-" + width + 'z';
  }
  return path;
}

std::string litPath(const PatternBytes& image, WallSize shown, double scale) {
  std::string path;
  Runs runs;
  uint32_t begin = 0;
  for (uint32_t row = 0; row <= shown.height; ++row) {
    Runs next = row < shown.height ? runsOf(image, row, shown.width) : Runs{};
    if (row < shown.height && same(next, runs)) continue;
    path += rectangles(runs, begin, row, scale);
    runs = std::move(next);
    begin = row;
  }
  return path;
}

uint16_t shownOf(uint16_t whole, uint16_t extent) {
  return static_cast<uint16_t>(std::min<uint32_t>(whole, kMostIntervals * std::max<uint32_t>(extent, 1)));
}

WallSize shownOf(const PatternBytes& image, WallSize wall) {
  const bool blocks = image[pattern::kKindAt] == pattern::kBlocks;
  return {
      shownOf(wall.width, ORVE_MCUC::le16(image, blocks ? pattern::kBlockWidthAt : pattern::kIntervalXAt)),
      shownOf(wall.height, ORVE_MCUC::le16(image, blocks ? pattern::kBlockHeightAt : pattern::kIntervalYAt))};
}

// A step of 1, 2 or 5 times a power of ten, so that an axis has about ten numbers at most.
uint32_t numberStep(uint32_t length) {
  uint32_t step = 1;
  while (length / step > 10)
    for (const uint32_t factor : {2U, 5U, 10U})
      if (length / (step * factor) <= 10 || factor == 10) {
        step *= factor;
        break;
      }
  return step;
}

void drawAxes(SvgSheet& sheet, WallSize shown, double scale) {
  const double width = shown.width * scale, height = shown.height * scale;
  std::string ticks;
  for (uint32_t x = 0; x <= shown.width; x += numberStep(shown.width)) {
    ticks += lineDown({kLeft + x * scale, kTop - 6}, 6);
    sheet.text({kLeft + x * scale, kTop - 10}, std::to_string(x), {.size = 12, .anchor = "middle"});
  }
  for (uint32_t y = 0; y <= shown.height; y += numberStep(shown.height)) {
    ticks += lineRight({kLeft - 6, kTop + y * scale}, 6);
    sheet.text({kLeft - 9, kTop + y * scale + 4}, std::to_string(y), {.size = 12, .anchor = "end"});
  }
  sheet.lines(ticks, "#1a1a1a", 1);
  sheet.text({kLeft + width / 2, kTop - 28}, "X, pixels", {.size = 13, .anchor = "middle"});
  sheet.upright({24, kTop + height / 2}, "Y, pixels", {.size = 13, .anchor = "middle"});
}

void drawLegend(SvgSheet& sheet, double top, WallSize shown, WallSize wall) {
  sheet.box({kLeft, top - 11}, 14, 14, "#1a1a1a", 1, 0.8);
  sheet.text({kLeft + 22, top}, "lit", {.size = 13});
  sheet.box({kLeft + 80, top - 11}, 14, 14, "#ffffff", 1, 0.8);
  sheet.text({kLeft + 102, top}, "dark", {.size = 13});
  const bool cut = shown.width < wall.width || shown.height < wall.height;
  sheet.text({kLeft, top + 22},
             (cut ? "upper left corner of " : "the whole wall, ") + std::to_string(wall.width) + " x " +
                 std::to_string(wall.height) + " pixels",
             {.size = 12.5});
}

}  // namespace

std::string patternSvg(const PatternBytes& image, WallSize wall, const std::string& title) {
  const WallSize shown = shownOf(image, wall);
  const double scale = std::min(kWidest / shown.width, kHighest / shown.height);
  const double width = shown.width * scale, height = shown.height * scale;
  const double legend = kTop + height + 34;
  SvgSheet sheet(kLeft + std::max(width, kNarrowest) + 40, legend + 40);
  sheet.text({kLeft, 32}, title, {.size = 18, .weight = "bold"});
  sheet.box({kLeft, kTop}, width, height, "#ffffff", 1, 1.2);
  sheet.fill(litPath(image, shown, scale));
  drawAxes(sheet, shown, scale);
  drawLegend(sheet, legend, shown, wall);
  return sheet.finish();
}

}  // namespace parlctl
