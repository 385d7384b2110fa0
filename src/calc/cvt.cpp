#include "calc/cvt.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace ORVE_MCUC {
namespace {

constexpr double CELL_GRAN_RND = 1.0;  // pixels
constexpr double CLOCK_STEP = 0.001;   // MHz
constexpr double MIN_V_BPORCH = 3.0;   // lines
constexpr double RB_V_FPORCH = 23.0;   // lines

constexpr double kFrontPorch = 3.0;             // lines
constexpr double kMinSyncAndBackPorch = 550.0;  // us
constexpr double kMinReducedBlanking = 460.0;   // us
constexpr double kReducedBlankPixels = 160.0;
constexpr double kReducedSyncPixels = 32.0;
constexpr double kMinReducedBackPorch = 6.0;  // lines
constexpr double kSyncShare = 0.08;           // of a line
constexpr double kLeastDuty = 20.0;           // percent
constexpr int kMostPixels = 65535;

// The width of the vertical sync tells the aspect ratio.
double syncLines(int width, int height) {
  struct Aspect {
    int width, height;
    double lines;
  };
  constexpr Aspect kAspects[] = {{4, 3, 4}, {16, 9, 5}, {16, 10, 6}, {5, 4, 7}, {15, 9, 7}};
  const auto* found = std::find_if(
      std::begin(kAspects), std::end(kAspects),
      [width, height](const Aspect& aspect) { return width * aspect.height == height * aspect.width; });
  return found == std::end(kAspects) ? 10 : found->lines;
}

// What both kinds of blanking begin with, and what they end in.
struct Frame {
  double activePixels = 0;  // with margins
  double lines = 0;         // of a field, with margins
  double interlace = 0;     // half a line of a field
  double sync = 0;          // lines
};
struct Blanking {
  double pixels = 0;  // of a line
  double syncPixels = 0;
  double frontPorch = 0;  // lines
  double totalLines = 0;
  double clock = 0;  // MHz
};

double inClockSteps(double clock) {
  return CLOCK_STEP * std::floor(clock / CLOCK_STEP);
}

std::optional<Blanking> fullBlanking(const Frame& frame, double freq) {
  const double period =
      (1 / freq - kMinSyncAndBackPorch / 1e6) / (frame.lines + kFrontPorch + frame.interlace) * 1e6;
  if (!(period > 0)) return std::nullopt;
  Blanking blanking;
  blanking.frontPorch = kFrontPorch;
  const double behindFront =
      std::max(std::floor(kMinSyncAndBackPorch / period) + 1, MIN_V_BPORCH + frame.sync);
  blanking.totalLines = frame.lines + behindFront + frame.interlace + kFrontPorch;
  const double duty = std::max(kLeastDuty, 30 - 300 * period / 1000);
  blanking.pixels =
      2 * CELL_GRAN_RND * std::floor(frame.activePixels * duty / (100 - duty) / (2 * CELL_GRAN_RND));
  const double totalPixels = frame.activePixels + blanking.pixels;
  blanking.clock = inClockSteps(totalPixels / period);
  blanking.syncPixels = std::floor(totalPixels * kSyncShare);
  return blanking;
}

std::optional<Blanking> reducedBlanking(const Frame& frame, double freq, bool film) {
  const double period = (1e6 / freq - kMinReducedBlanking) / frame.lines;
  if (!(period > 0)) return std::nullopt;
  Blanking blanking;
  blanking.frontPorch = RB_V_FPORCH;
  blanking.pixels = kReducedBlankPixels;
  blanking.syncPixels = kReducedSyncPixels;
  const double blankLines =
      std::max(std::floor(kMinReducedBlanking / period) + 1, RB_V_FPORCH + frame.sync + kMinReducedBackPorch);
  blanking.totalLines = blankLines + frame.lines + frame.interlace;
  const double totalPixels = frame.activePixels + kReducedBlankPixels;
  blanking.clock = inClockSteps(freq * blanking.totalLines * totalPixels / 1e6);
  if (film) blanking.clock = blanking.clock * 1000 / 1001;
  return blanking;
}

}  // namespace

std::optional<__mode> vert_refresh(const CvtRequest& request) {
  const auto isSize = [](int size) { return size >= 1 && size <= kMostPixels; };
  if (!isSize(request.h_pixels) || !isSize(request.v_lines) || !(request.freq > 0)) return std::nullopt;
  const double fieldLines = request.interlaced ? std::floor(request.v_lines / 2.0) : request.v_lines;
  const double hMargin = request.margins ? std::floor(request.h_pixels * 1.8 / 100) : 0;
  const double vMargin = request.margins ? std::floor(fieldLines * 0.018) : 0;
  const Frame frame{request.h_pixels + 2 * hMargin, fieldLines + 2 * vMargin, request.interlaced ? 0.5 : 0.0,
                    syncLines(request.h_pixels, request.v_lines)};
  const auto blanking = request.reduced_blank ? reducedBlanking(frame, request.freq, request.film_optimized)
                                              : fullBlanking(frame, request.freq);
  if (!blanking || blanking->totalLines > kMostPixels) return std::nullopt;

  const double frontPorch = blanking->pixels - blanking->pixels / 2 - blanking->syncPixels;
  const double totalPixels = frame.activePixels + blanking->pixels;
  __mode m;
  m.hr = request.h_pixels;
  m.hss = static_cast<int>(m.hr + frontPorch);
  m.hse = static_cast<int>(m.hss + blanking->syncPixels);
  m.hfl = static_cast<int>(totalPixels);
  m.vr = request.v_lines;
  m.vss = static_cast<int>(m.vr + blanking->frontPorch);
  m.vse = static_cast<int>(m.vss + frame.sync);
  m.vfl = static_cast<int>(blanking->totalLines - fieldLines + request.v_lines);
  m.pclk = blanking->clock;
  m.h_freq = blanking->clock * 1000 / totalPixels;
  m.v_freq = request.freq;
  m.real_v_rate = m.h_freq * 1000 / blanking->totalLines;
  m.rb = request.reduced_blank;
  m.in = request.interlaced;
  return m;
}

}  // namespace ORVE_MCUC
