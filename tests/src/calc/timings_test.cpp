// The table of timings and the computed ones against an independent calculator.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "calc/cvt.h"
#include "calc/inputmode.h"
#include "support/ediddecode.h"

namespace ORVE_MCUC {
namespace {

using edid_decode::Timing;

class Timings : public testing::Test {
 protected:
  void SetUp() override {
    if (!edid_decode::isInstalled()) GTEST_SKIP() << "edid-decode is not installed";
  }
};

bool isRow(const mode_table_t& row, const Timing& timing) {
  const resolution_t size = g_resolution_input[row.en_res_idx];
  const auto rounds = [](double value, int tenths) { return std::abs(value * 10 - tenths) <= 0.5 + 1e-6; };
  return timing.width == size.width && timing.height == size.height && !timing.interlaced &&
         rounds(timing.hertz, row.v_freq) && rounds(timing.kilohertz, row.h_freq);
}

TEST_F(Timings, OfTheTableAreThoseOfTheStandards) {
  auto known = edid_decode::listDmts();
  std::ranges::copy(edid_decode::listVics(), std::back_inserter(known));
  ASSERT_GT(known.size(), 150U);
  for (const mode_table_t& row : g_timing_table_input) {
    const auto hit = std::ranges::find_if(known, [&row](const Timing& t) { return isRow(row, t); });
    ASSERT_NE(hit, known.end()) << "row of resolution " << row.en_res_idx << " at " << row.v_freq;
    const Timing timing = edid_decode::timing(*hit).value();
    SCOPED_TRACE(timing.name);
    EXPECT_EQ(timing.hTotal(), row.h_total);
    EXPECT_EQ(timing.vTotal(), row.v_total);
    EXPECT_EQ(timing.hSync, row.h_sync);
    EXPECT_EQ(timing.vSync, row.v_sync);
    EXPECT_EQ(timing.hSync + timing.hBack, row.h_start);
    EXPECT_EQ(timing.vSync + timing.vBack, row.v_start);
    EXPECT_EQ((timing.hPositive ? kHorizontalPositive : 0) | (timing.vPositive ? kVerticalPositive : 0),
              row.flag);
  }
}

TEST_F(Timings, OfTheStandardAreAllFound) {
  int found = 0;
  for (const Timing& dmt : edid_decode::listDmts()) {
    const resolution_t size{static_cast<uint16_t>(dmt.width), static_cast<uint16_t>(dmt.height)};
    const bool wanted = !dmt.interlaced && dmt.hertz < 86 &&
                        std::ranges::find(g_resolution_input, size) != g_resolution_input.end();
    if (!wanted) continue;
    ++found;
    const auto frame = static_cast<uint32_t>(std::lround(dmt.hertz * 100));
    EXPECT_NE(GetDmtTiming(size.width, size.height, frame), nullptr) << dmt.name;
  }
  EXPECT_EQ(found, 57) << "seven of them are the same rate with longer blanking";
}

// What differs on purpose: cells of a pixel, not of eight, a clock in kHz, and other shortest porches.
void compare(int width, int height, double hertz, bool reduced) {
  SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + "@" + std::to_string(hertz) +
               (reduced ? " reduced" : ""));
  const auto theirs = edid_decode::cvt(width, height, hertz, reduced);
  const auto ours =
      vert_refresh({.h_pixels = width, .v_lines = height, .freq = hertz, .reduced_blank = reduced});
  ASSERT_TRUE(theirs && ours);
  const int blankLines = ours->vfl - ours->vr;
  const int sync = ours->vse - ours->vss;
  EXPECT_EQ(sync, theirs->vSync);
  EXPECT_EQ(ours->vss - ours->vr, reduced ? 23 : 3);
  if (reduced) {
    EXPECT_EQ(blankLines, std::max(theirs->vTotal() - theirs->height, 23 + sync + 6));
    EXPECT_EQ(ours->hfl - ours->hr, 160);
    EXPECT_EQ(ours->hss - ours->hr, theirs->hFront);
    EXPECT_EQ(ours->hse - ours->hss, theirs->hSync);
  } else {
    const bool shortest = theirs->vBack <= 7;
    EXPECT_LE(ours->vfl, theirs->vTotal());
    if (!shortest) {
      EXPECT_EQ(ours->vfl, theirs->vTotal());
    }
    EXPECT_GE(ours->hfl - ours->hr, theirs->hTotal() - theirs->width);
    EXPECT_LT(ours->hfl - ours->hr, theirs->hTotal() - theirs->width + 16);
  }
  EXPECT_LE(ours->real_v_rate, hertz + (reduced ? 1e-9 : 0.01 * hertz));
  EXPECT_NEAR(ours->pclk * 1e6 / ours->hfl / ours->vfl, ours->real_v_rate, 1e-6);
  if (reduced) {
    EXPECT_GT(ours->pclk + 0.001, hertz * ours->hfl * ours->vfl / 1e6 - 1e-9);
  }
}

constexpr double kRates[] = {24, 60, 85, 120};

TEST_F(Timings, ComputedWithReducedBlankingAreTheStandardsButForTheFrontPorch) {
  for (const resolution_t& size : g_resolution_input) {
    for (const double rate : kRates) compare(size.width, size.height, rate, true);
  }
}

TEST_F(Timings, ComputedWithFullBlankingAreTheStandardsButForFinerSteps) {
  for (const resolution_t& size : g_resolution_input) {
    for (const double rate : {24., 85.}) compare(size.width / 8 * 8, size.height, rate, false);
  }
}

TEST_F(Timings, ComputedForRandomModesAreTheStandards) {
  std::mt19937 source(8);
  const auto random = [&source] { return static_cast<int>(source() >> 1); };
  for (int n = 0; n < 30; ++n) {
    compare((80 + random() % 500) * 8, 200 + random() % 3000, 20 + random() % 12000 / 100.0, n % 3 != 0);
  }
}

TEST(CoordinatedTiming, KeepsItsMarginsInterlaceAndFilmRate) {
  const auto mode = [](bool interlaced, bool reduced, bool margins, bool film) {
    return vert_refresh({1920, 1080, 60, interlaced, reduced, margins, film}).value();
  };
  const auto plain = mode(false, true, false, false);
  EXPECT_EQ(plain.vfl, 1080 + 34) << "23 front, 5 sync, 6 back";
  EXPECT_DOUBLE_EQ(plain.pclk, 0.001 * std::floor(60. * 1114 * 2080 / 1000));
  EXPECT_NEAR(mode(false, true, false, true).pclk, plain.pclk * 1000 / 1001, 1e-9);
  EXPECT_EQ(mode(false, true, true, false).hfl, 1920 + 2 * 34 + 160);
  EXPECT_EQ(mode(false, true, true, false).vfl, 1080 + 34 + 2 * 19);
  const auto interlaced = mode(true, false, false, false);
  EXPECT_EQ(interlaced.vfl, 1080 + 22) << "3 front, 19 sync and back, half a line cut off";
  EXPECT_TRUE(interlaced.in);
}

TEST(CoordinatedTiming, HasNoneForWhatCannotBe) {
  const CvtRequest good{.h_pixels = 800, .v_lines = 600, .freq = 60, .reduced_blank = true};
  const auto with = [&good](auto change) {
    CvtRequest request = good;
    change(request);
    return vert_refresh(request);
  };
  EXPECT_TRUE(vert_refresh(good));
  EXPECT_FALSE(with([](CvtRequest& r) { r.h_pixels = 0; }));
  EXPECT_FALSE(with([](CvtRequest& r) { r.v_lines = -1; }));
  EXPECT_FALSE(with([](CvtRequest& r) { r.freq = std::nan(""); }));
  EXPECT_FALSE(with([](CvtRequest& r) { r.freq = 0; }));
  EXPECT_FALSE(with([](CvtRequest& r) { r.freq = 1e6 / 460; })) << "no time is left beside the blanking";
  EXPECT_FALSE(with([](CvtRequest& r) { r.freq = 1e9; }));
  EXPECT_FALSE(with([](CvtRequest& r) {
    r.freq = 1 / 0.00055;
    r.reduced_blank = false;
  }));
}

}  // namespace
}  // namespace ORVE_MCUC
