// From sensors to a brightness: averages, the two tables, and records that hostile addresses name.
#include "calc/luxtable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "calc/brightnessnodes.h"

namespace ORVE_MCUC {
namespace {

using Values = std::vector<uint16_t>;

TEST(LuxTableTest, AnAverageLeavesOutTheEndsAndWhatIsInvalid) {
  const struct {
    Values values;
    std::optional<uint16_t> average;
  } rows[] = {
      {{}, {}},
      {{7}, 7},
      {{kNoLux}, {}},
      {{10, kNoLux}, 10},
      {{10, 13}, 11},
      {{100, 5000, 120}, 120},
      {{kNoLux, kNoLux, kNoLux}, {}},
      {{5, kNoLux, kNoLux}, {}},  // the invalid ones are the highest: one is dropped, the other not used
      {{5, 9, kNoLux}, 9},
      {{1, 2, 3, 4, 5, 60000}, 3},
      {Values(16, 65534), 65534},
  };
  for (const auto& row : rows)
    EXPECT_EQ(SortAndAverage(row.values), row.average) << testing::PrintToString(row.values);
}

TEST(LuxTableTest, TheLinearTableHasEqualSteps) {
  const LinearTable even{.maxLux = 1000, .minLux = 0, .maxBrightness = 220, .minBrightness = 20, .steps = 4};
  LinearTable rest = even;
  rest.maxLux = 1003;  // steps of 250, and 3 lux that belong to none
  LinearTable falling = even;
  std::swap(falling.maxBrightness, falling.minBrightness);
  LinearTable narrow = even;
  narrow.maxLux = 3;
  LinearTable upsideDown = even;
  std::swap(upsideDown.maxLux, upsideDown.minLux);
  const struct {
    LinearTable table;
    uint16_t lux;
    std::optional<uint8_t> brightness;
  } rows[] = {
      {even, 0, 20},
      {even, 249, 20},
      {even, 250, 70},
      {even, 600, 120},
      {even, 1000, 220},
      {even, 65534, 220},
      {rest, 1001, 170},
      {falling, 600, 120},
      {falling, 0, 220},
      {narrow, 2, 170},
      {upsideDown, 5, 220},
      {{1000, 0, 220, 20, 0}, 5, {}},
      {{1000, 0, 220, 20, 33}, 5, {}},
      {{1000, 0, 220, 20, 32}, 999, 213},
  };
  for (const auto& row : rows)
    EXPECT_EQ(LuxToBrightnessLookupTable(row.table, row.lux), row.brightness) << row.lux << " lux";
}

LuxMap mapOf(std::initializer_list<LuxPoint> points) {
  LuxMap map;
  for (const LuxPoint& point : points) map.points[map.items++] = point;
  return map;
}

TEST(LuxTableTest, TheMapRisesBetweenItsPointsAndNeverFallsBetweenThem) {
  const LuxMap rising = mapOf({{100, 10}, {1000, 100}});
  const LuxMap falling = mapOf({{100, 80}, {1000, 20}});
  const LuxMap steep = mapOf({{0, 0}, {500, 50}, {500, 70}, {800, 200}});
  const struct {
    const LuxMap& map;
    uint16_t lux;
    std::optional<uint8_t> percent;
  } rows[] = {
      {rising, 50, 10},  {rising, 100, 10},  {rising, 550, 55},   {rising, 999, 99}, {rising, 61000, 100},
      {falling, 99, 80}, {falling, 550, 80}, {falling, 1000, 20}, {steep, 500, 50},  {steep, 501, 70},
      {steep, 799, 100}, {steep, 900, 100},  {LuxMap{}, 5, {}},
  };
  for (const auto& row : rows) EXPECT_EQ(MixAdjLuxToBriLookupTable(row.map, row.lux), row.percent) << row.lux;
  EXPECT_EQ(brightnessOf(55), 140);
  EXPECT_EQ(brightnessOf(255), 255);
}

TEST(LuxTableTest, ASensorsAnswerIsTakenOnlyWhenItIsValid) {
  EXPECT_EQ(luxOf({0x01, 0x02, 0x81, 0x10, 0x77}), (0x01 * 256 + 0x10) * 2);
  EXPECT_EQ(luxOf({0x01, 0x02, 0xFF, 0xFF, 0}), 65534);
  for (const SensorAnswer& wrong :
       {SensorAnswer{0x01, 0x02, 0x01, 0x10, 0}, SensorAnswer{0, 0x02, 0x81, 0x10, 0},
        SensorAnswer{0x01, 0, 0x81, 0x10, 0}})
    EXPECT_EQ(luxOf(wrong), std::nullopt);
  for (unsigned port = 0; port < 256; ++port)
    EXPECT_EQ(mayBeAsked({.PortAddr = static_cast<uint8_t>(port)}), port < 10) << port;
  EXPECT_FALSE(mayBeAsked({.SensorAddr = 6}));
  EXPECT_FALSE(mayBeAsked({.Pos = 1}));
}

// Every base address with every kind of byte behind it: what is read lies inside the file.
TEST(LuxTableTest, RecordsBeyondTheFileCountAsNone) {
  for (const int filler : {0, 1, 2, 8, 9, 32, 33, 255}) {
    const std::vector<uint8_t> file(brightness::kFileSize, static_cast<uint8_t>(filler));
    const auto count = static_cast<std::size_t>(filler);
    for (std::size_t base = 0; base <= 0xFFFF; base += base < 4000 || base > 5200 ? 97 : 1) {
      const auto inside = [&](std::size_t size) { return base + 1 + count * size <= file.size(); };
      ASSERT_EQ(mixedSensors(file, base).count, inside(8) && count <= 8 ? count : 0) << base;
      ASSERT_EQ(luxMap(file, base).all().size(), inside(3) && count <= 32 ? count : 0) << base;
      ASSERT_EQ(fallbackOf(file, base).enabled, count != 0 && base + 3 <= file.size()) << base;
      const MixedNodes nodes(file, base);
      ASSERT_EQ(nodes.count(), inside(16) && count > 0 ? filler : 1) << base;
      ASSERT_EQ(nodes[nodes.count() - 1].has_value(),
                base + 1 + static_cast<std::size_t>(nodes.count()) * 16 <= file.size());
      ASSERT_FALSE(nodes[nodes.count()]);
    }
  }
}

}  // namespace
}  // namespace ORVE_MCUC
