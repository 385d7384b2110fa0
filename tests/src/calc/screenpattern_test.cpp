// Test patterns: a pixel is lit where the pattern, counted from its first pixel, says so.
#include "calc/screenpattern.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

#include "mcucdatablock.h"

namespace ORVE_MCUC {
namespace {

struct Axis {
  int16_t first;
  uint16_t extent;  // interval or block
  /** Of the interval or block that a pixel lies in, and whether it begins there. */
  int number(int pixel) const {
    const int away = pixel - first;
    return (away < 0 ? away - extent + 1 : away) / extent;
  }
  bool begins(int pixel) const { return (pixel - first) % extent == 0; }
};

std::array<uint8_t, pattern::kImageSize> imageOf(uint8_t kind, const Axis& x, const Axis& y) {
  std::array<uint8_t, pattern::kImageSize> image{};
  const bool pixels = kind == pattern::kPixels;
  image[pattern::kKindAt] = kind;
  putLe16(image, pattern::kFirstXAt, static_cast<uint16_t>(x.first));
  putLe16(image, pattern::kFirstYAt, static_cast<uint16_t>(y.first));
  putLe16(image, pixels ? pattern::kIntervalXAt : pattern::kBlockWidthAt, x.extent);
  putLe16(image, pixels ? pattern::kIntervalYAt : pattern::kBlockHeightAt, y.extent);
  derivePhases(image);
  return image;
}

TEST(ScreenPatternTest, LightsWhatItsFirstPixelAndItsExtentsSay) {
  std::mt19937 random(11);
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int round = 0; round < 300; ++round) {
    const bool pixels = round % 2 == 0;
    const auto axis = [&] {
      const auto extent = static_cast<uint16_t>(1 + below(round % 5 == 0 ? 65535 : 40));
      const int least = pixels ? 0 : -std::min(extent - 1, 32768);
      const int end = pixels ? std::min<int>(extent, 32768) : 32768;
      return Axis{static_cast<int16_t>(least + below(end - least)), extent};
    };
    const Axis x = axis();
    const Axis y = axis();
    const auto image = imageOf(pixels ? pattern::kPixels : pattern::kBlocks, x, y);
    for (int n = 0; n < 200; ++n) {
      const int column = n < 100 ? below(80) : below(65536);
      const int row = n < 100 ? below(80) : below(65536);
      const bool lit =
          pixels ? x.begins(column) && y.begins(row) : (x.number(column) + y.number(row)) % 2 == 0;
      ASSERT_EQ(patternLights(image, static_cast<uint16_t>(column), static_cast<uint16_t>(row)), lit)
          << (pixels ? "pixels " : "blocks ") << x.first << '/' << x.extent << ' ' << y.first << '/'
          << y.extent << " at " << column << ' ' << row;
    }
  }
}

TEST(ScreenPatternTest, AFirstPixelOutsideItsIntervalOnEitherAxisHasNoPhase) {
  for (const auto& [x, y] : {std::pair{Axis{-1, 8}, Axis{3, 8}},
                             {Axis{3, 8}, Axis{-1, 8}},
                             {Axis{8, 8}, Axis{3, 8}},
                             {Axis{3, 8}, Axis{8, 8}}}) {
    auto image = imageOf(pattern::kPixels, x, y);
    EXPECT_FALSE(derivePixelPhases(image));
    EXPECT_EQ(le16(image, pattern::kPixelPhaseXAt), 0);
    EXPECT_EQ(le16(image, pattern::kPixelPhaseYAt), 0);
  }
}

}  // namespace
}  // namespace ORVE_MCUC
