// Curves and coefficients of the colour library, from the formulas of their standards.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "board_journal.h"
#include "platform/colour.h"

using namespace simboard;

namespace {

constexpr std::size_t kEntries = COLOUR_TABLE_SIZE / 2;
constexpr double kPi = 3.14159265358979323846;

void putLe16(unsigned char* at, long value) {
  at[0] = static_cast<unsigned char>(value & 0xFF);
  at[1] = static_cast<unsigned char>(value >> 8 & 0xFF);
}

template <class Curve>
void fillTable(unsigned char* table, Curve curve) {
  for (std::size_t i = 0; i < kEntries; ++i) {
    const double light = std::clamp(curve(static_cast<double>(i) / (kEntries - 1)), 0.0, 1.0);
    putLe16(table + 2 * i, std::lround(light * 65535));
  }
}

// SMPTE ST 2084: signal 0..1 to cd/m2.
double pqToLight(double signal) {
  constexpr double m1 = 2610.0 / 16384, m2 = 2523.0 / 4096 * 128;
  constexpr double c1 = 3424.0 / 4096, c2 = 2413.0 / 4096 * 32, c3 = 2392.0 / 4096 * 32;
  const double power = std::pow(signal, 1 / m2);
  return 10000 * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1 / m1);
}

// ITU-R BT.2100: inverse of the HLG transfer function, signal 0..1 to scene light 0..1.
double hlgToLight(double signal) {
  constexpr double a = 0.17883277, b = 0.28466892, c = 0.55991073;
  return signal <= 0.5 ? signal * signal / 3 : (std::exp((signal - c) / a) + b) / 12;
}

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

Matrix operator*(const Matrix& a, const Matrix& b) {
  Matrix product{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      for (std::size_t k = 0; k < 3; ++k) product[row][column] += a[row][k] * b[k][column];
    }
  }
  return product;
}

// ITU-R BT.709: RGB to luma and chroma differences, and back.
constexpr double kRed = 0.2126, kBlue = 0.0722, kGreen = 1 - kRed - kBlue;
constexpr double kToCb = 2 * (1 - kBlue), kToCr = 2 * (1 - kRed);
constexpr Matrix kRgbToYuv{
    {{kRed, kGreen, kBlue}, {-kRed / kToCb, -kGreen / kToCb, 0.5}, {0.5, -kGreen / kToCr, -kBlue / kToCr}}};
constexpr Matrix kYuvToRgb{
    {{1, 0, kToCr}, {1, -kToCb* kBlue / kGreen, -kToCr* kRed / kGreen}, {1, kToCb, 0}}};

// How a side of the conversion codes its pixels: the matrix to or from luma and chroma of full range, and the
// codes of black and of no chroma, full scale being 1.
struct Coding {
  Matrix toYuv;
  Matrix fromYuv;
  Vector offset;
};
constexpr double kNoChroma = 128.0 / 255, kBlack = 16.0 / 255;
constexpr double kLuma = 219.0 / 255, kChroma = 224.0 / 255;
constexpr Coding kFullRgb{kRgbToYuv, kYuvToRgb, {0, 0, 0}};
constexpr Coding kFullYuv{
    {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {0, kNoChroma, kNoChroma}};
constexpr Coding kLimitedYuv{{{{1 / kLuma, 0, 0}, {0, 1 / kChroma, 0}, {0, 0, 1 / kChroma}}},
                             {{{kLuma, 0, 0}, {0, kChroma, 0}, {0, 0, kChroma}}},
                             {kBlack, kNoChroma, kNoChroma}};
struct Conversion {
  const Coding& from;
  const Coding& to;
};
constexpr Conversion kConversions[] = {{kFullRgb, kFullRgb},    {kFullRgb, kLimitedYuv},
                                       {kFullRgb, kFullYuv},    {kFullYuv, kFullRgb},
                                       {kLimitedYuv, kFullRgb}, {kLimitedYuv, kLimitedYuv}};

// Contrast scales luma and chroma, saturation the chroma alone, and hue turns it by degrees.
Matrix adjustment(uint16_t saturation, uint16_t contrast, uint16_t hue) {
  const double gain = contrast / 50.0;
  const double chroma = gain * saturation / 50.0;
  const double along = chroma * std::cos(hue * kPi / 180);
  const double across = chroma * std::sin(hue * kPi / 180);
  return {{{gain, 0, 0}, {0, along, -across}, {0, across, along}}};
}

void putCoefficient(unsigned char* coefficients, std::size_t index, double value) {
  putLe16(coefficients + 2 * index, std::lround(std::clamp(value * 4096, -32768.0, 32767.0)));
}

}  // namespace

void HDR10GammaCalculation(uint16_t peak_light, uint16_t ambient_light, uint8_t brightness, int bit_depth,
                           uint8_t low_gray_effect, uint8_t high_gray_effect, unsigned char* table) {
  const double peak = std::max<double>(peak_light, 1);
  // Ambient light hides dark levels: a smaller exponent lifts them, as the low-grey effect does.
  const double exponent = (1 - low_gray_effect / 1020.0) / (1 + ambient_light / 1000.0);
  const double gain = std::min<int>(brightness, 100) / 100.0 * (1 + high_gray_effect / 1020.0);
  fillTable(table, [&](double signal) { return gain * std::pow(pqToLight(signal) / peak, exponent); });
  if (journalsWrites()) {
    JournalLine("colour")
        .word("hdr10")
        .number(peak_light)
        .number(ambient_light)
        .number(brightness)
        .word(std::to_string(bit_depth))
        .number(low_gray_effect)
        .number(high_gray_effect);
  }
}

void HLGGammaCalculation(uint8_t hlg_class, unsigned char* table) {
  const double systemGamma = 1 + hlg_class * 0.05;
  fillTable(table, [&](double signal) { return std::pow(hlgToLight(signal), systemGamma); });
  if (journalsWrites()) JournalLine("colour").word("hlg").number(hlg_class);
}

void PictureQualityCalculation(int mode, uint16_t saturation, uint16_t contrast, uint16_t hue, int arg,
                               unsigned char* coefficients) {
  std::memset(coefficients, 0, COLOUR_COEFFICIENTS_SIZE);
  if (mode >= 0 && mode < static_cast<int>(std::size(kConversions))) {
    const auto& [from, to] = kConversions[mode];
    const Matrix matrix = to.fromYuv * adjustment(saturation, contrast, hue) * from.toYuv;
    for (std::size_t i = 0; i < 9; ++i) putCoefficient(coefficients, i, matrix[i / 3][i % 3]);
    for (std::size_t i = 0; i < 3; ++i) {
      putCoefficient(coefficients, 9 + i, from.offset[i]);
      putCoefficient(coefficients, 12 + i, to.offset[i]);
    }
  }
  if (journalsWrites()) {
    JournalLine("colour")
        .word("csc")
        .word(std::to_string(mode))
        .number(saturation)
        .number(contrast)
        .number(hue)
        .word(std::to_string(arg));
  }
}
