// Curves of the colour library, from the formulas of their standards.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "board_journal.h"
#include "platform/colour.h"

using namespace simboard;

namespace {

constexpr int kEntries = COLOUR_TABLE_SIZE / 2;
constexpr double kPi = 3.14159265358979323846;

template <class Curve>
void fillTable(unsigned char* table, Curve curve) {
  for (int i = 0; i < kEntries; ++i) {
    const double light = std::clamp(curve(static_cast<double>(i) / (kEntries - 1)), 0.0, 1.0);
    const auto entry = static_cast<unsigned>(std::lround(light * 65535));
    table[2 * i] = static_cast<unsigned char>(entry);
    table[2 * i + 1] = static_cast<unsigned char>(entry >> 8);
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

}  // namespace

void HDR10GammaCalculation(uint16_t peak_light, uint16_t ambient_light, uint8_t brightness, int bit_depth,
                           uint8_t low_gray_effect, uint8_t high_gray_effect, unsigned char* table) {
  const double peak = std::max<double>(peak_light, 1);
  // Ambient light hides dark levels: they are lifted by a small exponent.
  const double lift = 1 / (1 + ambient_light / 1000.0);
  fillTable(table,
            [&](double signal) { return std::pow(pqToLight(signal) / peak, lift) * brightness / 255.0; });
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

// Sixteen coefficients of 16 bits, 1.0 being 4096: a 3 x 3 matrix that turns hue and scales saturation and
// contrast, then zeros.
void PictureQualityCalculation(int mode, uint16_t saturation, uint16_t contrast, uint16_t hue, int arg,
                               unsigned char* coefficients) {
  std::memset(coefficients, 0, COLOUR_COEFFICIENTS_SIZE);
  const double gain = contrast / 50.0;
  const double chroma = gain * saturation / 50.0;
  const double angle = hue * kPi / 180;
  const double matrix[9] = {gain,
                            0,
                            0,
                            0,
                            chroma * std::cos(angle),
                            -chroma * std::sin(angle),
                            0,
                            chroma * std::sin(angle),
                            chroma * std::cos(angle)};
  for (int i = 0; i < 9; ++i) {
    const auto value = static_cast<int>(std::lround(std::clamp(matrix[i] * 4096, -32768.0, 32767.0)));
    coefficients[2 * i] = static_cast<unsigned char>(value & 0xFF);
    coefficients[2 * i + 1] = static_cast<unsigned char>(value >> 8 & 0xFF);
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
