// Gamma curves as a plot.
#include <algorithm>

#include "gammatables.h"
#include "plot.h"

namespace parlctl {

namespace {

struct Look {
  const char* colour;
  const char* dashes;
};
constexpr std::array<Look, 3> kChannelLooks{Look{"#b3261e", "12 5"}, Look{"#1b7a3d", "5 4"},
                                            Look{"#1f4fbf", "2 4"}};
constexpr Look kBuiltInLook{"#8a8a8a", "none"};
constexpr std::size_t kEvery = 16;  // entries between points: finer than the sheet is

std::vector<Point> pointsOf(const GammaCurve& curve) {
  std::vector<Point> points;
  for (std::size_t i = 0; i < curve.size(); i += kEvery)
    points.push_back({static_cast<double>(i), static_cast<double>(curve[i])});
  if (!curve.empty()) points.push_back({static_cast<double>(curve.size() - 1), double(curve.back())});
  return points;
}

}  // namespace

std::string gammaSvg(const std::string& title, const GammaTables& tables) {
  Plot plot(title, {.title = "entry of the table (signal, 4095 is white)", .high = 4096, .step = 512},
            {.title = "light (65535 is full scale)", .high = 65536, .step = 8192});
  plot.curve({"built-in curve", pointsOf(builtInGamma()), kBuiltInLook.colour, kBuiltInLook.dashes, 5});
  const bool one = tables[0] == tables[1] && tables[0] == tables[2];
  for (std::size_t channel = 0; channel < (one ? 1 : tables.size()); ++channel) {
    const Look look = one ? Look{"#1a1a1a", "12 5"} : kChannelLooks[channel];
    plot.curve({one ? "red, green and blue" : kChannelNames[channel], pointsOf(tables[channel]), look.colour,
                look.dashes});
  }
  return plot.svg();
}

}  // namespace parlctl
