// The video timings that the inputs ask their sources for by name: resolutions and timings as VESA DMT 1.0
// and CEA-861 give them. Values only, checked while compiling.
//
// Of the two standards the table holds what an input can use: progressive timings up to 85 Hz, of CEA-861
// those of the 60 Hz family (24, 30 and 60 Hz, each also at 1000/1001), and only what fits into a detailed
// timing descriptor. Where DMT gives a rate twice the reduced blanking stands here: an LED wall needs no time
// to retrace, and 1920 x 1200 fits a single DVI link only that way. Border pixels count as porch.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace ORVE_MCUC {

struct resolution_t {
  uint16_t width;
  uint16_t height;
  bool operator==(const resolution_t&) const = default;
};

inline constexpr std::array<resolution_t, 22> g_resolution_input{
    {{640, 400},   {720, 400},   {848, 480},   {640, 480},   {800, 600},   {1280, 720},
     {1366, 768},  {1280, 768},  {1360, 768},  {1024, 768},  {1280, 800},  {1152, 864},
     {1440, 900},  {1280, 960},  {1280, 1024}, {1680, 1050}, {1400, 1050}, {1920, 1080},
     {1920, 1200}, {2048, 1152}, {1600, 1200}, {3840, 2160}}};

// Sync polarities of a timing.
enum SyncPolarity : uint16_t {
  kBothNegative = 0,
  kHorizontalPositive = 1,
  kVerticalPositive = 2,
  kBothPositive = 3
};

// Horizontal values in pixels, vertical ones in lines. A start is sync plus back porch.
struct mode_table_t {
  uint32_t en_res_idx;  // of g_resolution_input
  uint16_t h_freq;      // 0.1 kHz
  uint16_t v_freq;      // 0.1 Hz
  uint16_t h_total;
  uint16_t v_total;
  uint16_t h_blanking;
  uint16_t h_sync;
  uint16_t h_start;
  uint16_t v_blanking;
  uint16_t v_sync;
  uint16_t v_start;
  uint16_t flag;  // SyncPolarity
};

// By resolution, then by rate.
inline constexpr std::array<mode_table_t, 54> g_timing_table_input{{
    // clang-format off
    // 640 x 400
    {0, 379, 851, 832, 445, 192, 64, 160, 45, 3, 44, kVerticalPositive},
    // 720 x 400
    {1, 379, 850, 936, 446, 216, 72, 180, 46, 3, 45, kVerticalPositive},
    // 848 x 480
    {2, 310, 600, 1088, 517, 240, 112, 224, 37, 8, 31, kBothPositive},
    // 640 x 480
    {3, 315, 599, 800, 525, 160, 96, 144, 45, 2, 35, kBothNegative},
    {3, 379, 728, 832, 520, 192, 40, 168, 40, 3, 31, kBothNegative},
    {3, 375, 750, 840, 500, 200, 64, 184, 20, 3, 19, kBothNegative},
    {3, 433, 850, 832, 509, 192, 56, 136, 29, 3, 28, kBothNegative},
    // 800 x 600
    {4, 352, 562, 1024, 625, 224, 72, 200, 25, 2, 24, kBothPositive},
    {4, 379, 603, 1056, 628, 256, 128, 216, 28, 4, 27, kBothPositive},
    {4, 481, 722, 1040, 666, 240, 120, 184, 66, 6, 29, kBothPositive},
    {4, 469, 750, 1056, 625, 256, 80, 240, 25, 3, 24, kBothPositive},
    {4, 537, 851, 1048, 631, 248, 64, 216, 31, 3, 30, kBothPositive},
    // 1280 x 720
    {5, 450, 600, 1650, 750, 370, 40, 260, 30, 5, 25, kBothPositive},
    // 1366 x 768
    {6, 480, 600, 1500, 800, 134, 56, 120, 32, 3, 31, kBothPositive},
    // 1280 x 768
    {7, 474, 600, 1440, 790, 160, 32, 112, 22, 7, 19, kHorizontalPositive},
    {7, 603, 749, 1696, 805, 416, 128, 336, 37, 7, 34, kVerticalPositive},
    {7, 686, 848, 1712, 809, 432, 136, 352, 41, 7, 38, kVerticalPositive},
    // 1360 x 768
    {8, 477, 600, 1792, 795, 432, 112, 368, 27, 6, 24, kBothPositive},
    // 1024 x 768
    {9, 484, 600, 1344, 806, 320, 136, 296, 38, 6, 35, kBothNegative},
    {9, 565, 701, 1328, 806, 304, 136, 280, 38, 6, 35, kBothNegative},
    {9, 600, 750, 1312, 800, 288, 96, 272, 32, 3, 31, kBothPositive},
    {9, 687, 850, 1376, 808, 352, 96, 304, 40, 3, 39, kBothPositive},
    // 1280 x 800
    {10, 493, 599, 1440, 823, 160, 32, 112, 23, 6, 20, kHorizontalPositive},
    {10, 628, 749, 1696, 838, 416, 128, 336, 38, 6, 35, kVerticalPositive},
    {10, 716, 849, 1712, 843, 432, 136, 352, 43, 6, 40, kVerticalPositive},
    // 1152 x 864
    {11, 675, 750, 1600, 900, 448, 128, 384, 36, 3, 35, kBothPositive},
    // 1440 x 900
    {12, 555, 599, 1600, 926, 160, 32, 112, 26, 6, 23, kHorizontalPositive},
    {12, 706, 750, 1936, 942, 496, 152, 400, 42, 6, 39, kVerticalPositive},
    {12, 804, 848, 1952, 948, 512, 152, 408, 48, 6, 45, kVerticalPositive},
    // 1280 x 960
    {13, 600, 600, 1800, 1000, 520, 112, 424, 40, 3, 39, kBothPositive},
    {13, 859, 850, 1728, 1011, 448, 160, 384, 51, 3, 50, kBothPositive},
    // 1280 x 1024
    {14, 640, 600, 1688, 1066, 408, 112, 360, 42, 3, 41, kBothPositive},
    {14, 800, 750, 1688, 1066, 408, 144, 392, 42, 3, 41, kBothPositive},
    {14, 911, 850, 1728, 1072, 448, 160, 384, 48, 3, 47, kBothPositive},
    // 1680 x 1050
    {15, 647, 599, 1840, 1080, 160, 32, 112, 30, 6, 27, kHorizontalPositive},
    {15, 823, 749, 2272, 1099, 592, 176, 472, 49, 6, 46, kVerticalPositive},
    {15, 939, 849, 2288, 1105, 608, 176, 480, 55, 6, 52, kVerticalPositive},
    // 1400 x 1050
    {16, 647, 599, 1560, 1080, 160, 32, 112, 30, 4, 27, kHorizontalPositive},
    {16, 823, 749, 1896, 1099, 496, 144, 392, 49, 4, 46, kVerticalPositive},
    {16, 939, 850, 1912, 1105, 512, 152, 408, 55, 4, 52, kVerticalPositive},
    // 1920 x 1080
    {17, 270, 240, 2750, 1125, 830, 44, 192, 45, 5, 41, kBothPositive},
    {17, 338, 300, 2200, 1125, 280, 44, 192, 45, 5, 41, kBothPositive},
    {17, 675, 600, 2200, 1125, 280, 44, 192, 45, 5, 41, kBothPositive},
    // 1920 x 1200
    {18, 740, 600, 2080, 1235, 160, 32, 112, 35, 6, 32, kHorizontalPositive},
    {18, 940, 749, 2608, 1255, 688, 208, 552, 55, 6, 52, kVerticalPositive},
    {18, 1072, 849, 2624, 1262, 704, 208, 560, 62, 6, 59, kVerticalPositive},
    // 2048 x 1152
    {19, 720, 600, 2250, 1200, 202, 80, 176, 48, 3, 47, kBothPositive},
    // 1600 x 1200
    {20, 750, 600, 2160, 1250, 560, 192, 496, 50, 3, 49, kBothPositive},
    {20, 812, 650, 2160, 1250, 560, 192, 496, 50, 3, 49, kBothPositive},
    {20, 875, 700, 2160, 1250, 560, 192, 496, 50, 3, 49, kBothPositive},
    {20, 938, 750, 2160, 1250, 560, 192, 496, 50, 3, 49, kBothPositive},
    {20, 1062, 850, 2160, 1250, 560, 192, 496, 50, 3, 49, kBothPositive},
    // 3840 x 2160
    {21, 675, 300, 4400, 2250, 560, 88, 384, 90, 10, 82, kBothPositive},
    {21, 1350, 600, 4400, 2250, 560, 88, 384, 90, 10, 82, kBothPositive},
    // clang-format on
}};

// How far a requested rate may be from a timing's, in 0.1 Hz.
inline constexpr int kRateTolerance = 4;

constexpr bool isSound(const mode_table_t& timing) {
  if (timing.en_res_idx >= g_resolution_input.size()) return false;
  const resolution_t active = g_resolution_input[timing.en_res_idx];
  const auto blankingIsSound = [](int blanking, int sync, int start, int mostFront, int mostSync) {
    return 0 < sync && sync < start && start < blanking && blanking - start <= mostFront && sync <= mostSync;
  };
  // Lines a second by either column, in 0.1 Hz, each rounded to its own unit.
  const int byFrames = timing.v_freq * timing.v_total;
  const int byLines = timing.h_freq * 1000;
  const int rounding = timing.v_total / 2 + 500;
  return timing.h_total == active.width + timing.h_blanking &&
         timing.v_total == active.height + timing.v_blanking && timing.flag <= kBothPositive &&
         blankingIsSound(timing.h_blanking, timing.h_sync, timing.h_start, 1023, 1023) &&
         blankingIsSound(timing.v_blanking, timing.v_sync, timing.v_start, 63, 63) &&
         byFrames - byLines <= rounding && byLines - byFrames <= rounding;
}
static_assert(std::all_of(g_timing_table_input.begin(), g_timing_table_input.end(), isSound));
// The first match is the only one: rates of a resolution lie further apart than the tolerance reaches.
static_assert(std::adjacent_find(g_timing_table_input.begin(), g_timing_table_input.end(),
                                 [](const mode_table_t& a, const mode_table_t& b) {
                                   return a.en_res_idx > b.en_res_idx ||
                                          (a.en_res_idx == b.en_res_idx &&
                                           a.v_freq + 2 * kRateTolerance >= b.v_freq);
                                 }) == g_timing_table_input.end());

}  // namespace ORVE_MCUC
