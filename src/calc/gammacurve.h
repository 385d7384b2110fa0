// The gamma curve that a wall shows until it is given tables of its own: a power law in 1024 levels, each of
// which four neighbouring entries of the FPGA's table share. Calculated by the compiler.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ORVE_MCUC {

inline constexpr std::size_t kGammaLevels = 1024;
inline constexpr std::size_t kGammaEntries = 4096;                  // of a table
inline constexpr std::size_t kGammaTableBytes = 2 * kGammaEntries;  // u16, little-endian

// Light of full scale 65535 for a level of 0 .. 1023: 65535 * (level / 1023) ^ 2.79615, rounded.
inline constexpr double kDefaultGamma = 2.79615;

namespace gammacurve {

// e to a power, and the natural logarithm of a number in (0, 1]: <cmath> has them for the compiler only as an
// extension of one compiler.
constexpr double exponential(double x) {
  int halvings = 0;
  while (x < -0.5 || x > 0.5) {
    x /= 2;
    ++halvings;
  }
  double sum = 1;
  double term = 1;
  for (int n = 1; n < 18; ++n) {
    term *= x / n;
    sum += term;
  }
  for (; halvings > 0; --halvings) sum *= sum;
  return sum;
}
constexpr double logarithm(double x) {
  constexpr double kLn2 = 0.693147180559945309417;
  double shift = 0;
  while (x < 0.75) {
    x *= 2;
    shift -= kLn2;
  }
  const double t = (x - 1) / (x + 1);
  double sum = 0;
  double power = t;
  for (int n = 1; n < 40; n += 2) {
    sum += power / n;
    power *= t * t;
  }
  return shift + 2 * sum;
}

constexpr uint16_t lightOf(std::size_t level) {
  if (level == 0) return 0;
  const double signal = static_cast<double>(level) / (kGammaLevels - 1);
  const double light = 65535 * exponential(kDefaultGamma * logarithm(signal));
  const auto below = static_cast<uint16_t>(light);
  // std::lround is not constexpr.
  return light - below < 0.5 ? below : static_cast<uint16_t>(below + 1);
}

constexpr std::array<uint8_t, kGammaTableBytes> defaultTable() {
  std::array<uint8_t, kGammaTableBytes> table{};
  for (std::size_t entry = 0; entry < kGammaEntries; ++entry) {
    const uint16_t light = lightOf(entry / (kGammaEntries / kGammaLevels));
    table[2 * entry] = static_cast<uint8_t>(light);
    table[2 * entry + 1] = static_cast<uint8_t>(light >> 8);
  }
  return table;
}

constexpr bool neverFalls() {
  for (std::size_t level = 1; level < kGammaLevels; ++level) {
    if (lightOf(level) < lightOf(level - 1)) return false;
  }
  return true;
}
static_assert(lightOf(0) == 0 && lightOf(19) == 1 && lightOf(512) == 9461 && lightOf(1023) == 65535);
static_assert(neverFalls());

}  // namespace gammacurve

}  // namespace ORVE_MCUC
