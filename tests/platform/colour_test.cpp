// The colour library of the simulated board beside values that the standards give themselves.
#include "platform/colour.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace {

using Table = std::array<unsigned char, COLOUR_TABLE_SIZE>;

// Light of full scale 1 at a signal from 0 to 1.
double lightAt(const Table& table, double signal) {
  const auto entry = static_cast<std::size_t>(std::lround(signal * 4095));
  return (table[2 * entry] + 256 * table[2 * entry + 1]) / 65535.0;
}

struct Sample {
  double signal;
  double light;
};

// SMPTE ST 2084: code values of ITU-R BT.2408 for known luminances, full-range signal to cd/m2.
TEST(ColourLibraryTest, Hdr10IsThePerceptualQuantizerUpToThePeak) {
  Table table{};
  HDR10GammaCalculation(10000, 0, 100, 10, 0, 0, table.data());
  for (const auto& [signal, light] : {Sample{0.5081, 100}, Sample{0.5807, 203}, Sample{0.7518, 1000},
                                      Sample{0.9026, 4000}, Sample{1, 10000}})
    EXPECT_NEAR(lightAt(table, signal) * 10000, light, light * 0.004) << signal;
  EXPECT_EQ(lightAt(table, 0), 0);
  HDR10GammaCalculation(1000, 0, 100, 10, 0, 0, table.data());
  EXPECT_NEAR(lightAt(table, 0.5081), 0.1, 0.0005);
  EXPECT_EQ(lightAt(table, 0.7530), 1) << "cut at the peak";
}

// ITU-R BT.2100: E' of the OETF for scene light E, with 1/12 at half the signal; 0.75 is reference white.
TEST(ColourLibraryTest, HlgOfClassNoneIsTheInverseTransferFunction) {
  Table table{};
  HLGGammaCalculation(0, table.data());
  for (const auto& [signal, light] :
       {Sample{0, 0}, Sample{0.25, 1.0 / 48}, Sample{0.5, 1.0 / 12}, Sample{0.75, 0.26496}, Sample{1, 1}})
    EXPECT_NEAR(lightAt(table, signal), light, 0.0004) << signal;
}

using Pixel = std::array<double, 3>;

// What the FPGA makes of a pixel with the coefficients, full scale being 1.
Pixel converted(int mode, const Pixel& in) {
  std::array<unsigned char, COLOUR_COEFFICIENTS_SIZE> bytes{};
  PictureQualityCalculation(mode, 50, 50, 0, 0, bytes.data());
  const auto number = [&bytes](std::size_t i) {
    return static_cast<int16_t>(bytes[2 * i] + 256 * bytes[2 * i + 1]) / 4096.0;
  };
  Pixel out{};
  for (std::size_t row = 0; row < 3; ++row) {
    out[row] = number(12 + row);
    for (std::size_t k = 0; k < 3; ++k) out[row] += number(3 * row + k) * (in[k] - number(9 + k));
  }
  return out;
}

// ITU-R BT.709 colour bars in 8-bit codes: full-range RGB, and limited-range Y, Cb, Cr.
struct Bar {
  const char* name;
  Pixel rgb;
  Pixel yuv;
};
constexpr Bar kBars[] = {
    {"white", {255, 255, 255}, {235, 128, 128}}, {"black", {0, 0, 0}, {16, 128, 128}},
    {"red", {255, 0, 0}, {63, 102, 240}},        {"green", {0, 255, 0}, {173, 42, 26}},
    {"blue", {0, 0, 255}, {32, 240, 118}},       {"yellow", {255, 255, 0}, {219, 16, 138}},
};

void expectCodes(int mode, const Pixel& from, const Pixel& to, const char* name) {
  Pixel in = from;
  for (double& value : in) value /= 255;
  const Pixel out = converted(mode, in);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(out[i] * 255, to[i], 1.2) << name << " mode " << mode;
}

TEST(ColourLibraryTest, ConversionsGiveTheColourBarsOfBt709) {
  constexpr int kFullToFull = 0, kFullToLimited = 1, kLimitedToFull = 4, kLimitedToLimited = 5;
  for (const Bar& bar : kBars) {
    expectCodes(kFullToFull, bar.rgb, bar.rgb, bar.name);
    expectCodes(kFullToLimited, bar.rgb, bar.yuv, bar.name);
    expectCodes(kLimitedToFull, bar.yuv, bar.rgb, bar.name);
    expectCodes(kLimitedToLimited, bar.yuv, bar.yuv, bar.name);
  }
}

}  // namespace
