// EDIDs for a mode, read back by an independent decoder.
#include "calc/edid.h"

#include <gtest/gtest.h>

#include <random>

#include "calc/inputmode.h"
#include "mcucdatablock.h"
#include "platform/input.h"
#include "support/ediddecode.h"

namespace ORVE_MCUC {
namespace {

EdidBytes base() {
  const modify_edid_para para{};
  EdidBytes edid{};
  ModifyEDID_API.build(&para, edid.data());
  return edid;
}

std::optional<EdidBytes> forMode(unsigned width, unsigned height, unsigned frame) {
  return ResT_calEDID_by_model_new(
      base(), {static_cast<uint16_t>(width), static_cast<uint16_t>(height), static_cast<uint16_t>(frame)});
}

unsigned wordOf(const std::optional<EdidBytes>& edid) {
  return edid ? le16(*edid, kEdidTimingAt) : 0;
}

TEST(Edid, OfFullHdIsTheOneEverybodyKnows) {
  constexpr DescriptorBytes expected{0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58,
                                     0x2C, 0x45, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x18};
  const auto edid = forMode(1920, 1080, 6000);
  ASSERT_TRUE(edid);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), edid->begin() + kEdidTimingAt));
  EXPECT_EQ(modeOfEdid(*edid), (InputMode{1920, 1080, 6000}));
}

TEST(Edid, ClockIsSoughtForTheFrameInAHundredSteps) {
  const struct {
    unsigned width, height, frame, word;
    const char* why;
  } cases[] = {
      {1920, 1080, 5994, 14836, "1000/1001, and one step up"},
      {1920, 1080, 2398, 7419, "of 24 Hz"},
      {1920, 1080, 5960, 14753, "at the edge of the tolerance, 97 steps down"},
      {1920, 1080, 6049, 14950, "beyond 100 steps"},
      {1920, 1080, 5000, 11586, "no standard timing: 2080 x 1114 computed"},
      {3840, 2160, 6000, 59400, "the largest standard one"},
      {1280, 800, 6000, 7111, "60 Hz of a timing with 59.9"},
  };
  for (const auto& c : cases) EXPECT_EQ(wordOf(forMode(c.width, c.height, c.frame)), c.word) << c.why;
  EXPECT_FALSE(timingOfMode({1920, 1080, 5000})->standard);
  EXPECT_TRUE(timingOfMode({1920, 1080, 6049})->standard);
  EXPECT_FALSE(timingOfMode({1920, 1080, 6050})->standard);
}

TEST(Edid, IsNotMadeForAModeThatNoDescriptorSays) {
  const struct {
    unsigned width, height, frame;
    const char* why;
  } cases[] = {{0, 1080, 6000, "no pixels"},
               {1920, 0, 6000, "no lines"},
               {4096, 1080, 6000, "too many pixels"},
               {1920, 4096, 2400, "too many lines"},
               {1920, 1080, 0, "no frames"},
               {4095, 4095, 6000, "a clock beyond 655.35 MHz"},
               {4000, 2000, 65535, "a clock and a blanking beyond all"},
               {1, 1, 1, "a clock of less than 10 kHz"}};
  for (const auto& c : cases) EXPECT_FALSE(forMode(c.width, c.height, c.frame)) << c.why;
  DetailedTiming timing =
      parseDtd(std::span<const uint8_t>(base()).subspan<kEdidTimingAt, kEdidDescriptor>());
  EXPECT_TRUE(fitsDescriptor(timing));
  uint32_t DetailedTiming::*const fields[] = {&DetailedTiming::hActive,     &DetailedTiming::hBlank,
                                              &DetailedTiming::vActive,     &DetailedTiming::vBlank,
                                              &DetailedTiming::hSyncOffset, &DetailedTiming::hSyncWidth,
                                              &DetailedTiming::vSyncOffset, &DetailedTiming::vSyncWidth};
  constexpr uint32_t kMost[] = {4095, 4095, 4095, 4095, 1023, 1023, 63, 63};
  for (std::size_t i = 0; i < std::size(fields); ++i) {
    DetailedTiming largest = timing;
    largest.*fields[i] = kMost[i];
    EXPECT_TRUE(fitsDescriptor(largest)) << i;
    EXPECT_EQ(parseDtd(edid_create_dtd(largest, 14850)), largest) << i;
    largest.*fields[i] = kMost[i] + 1;
    EXPECT_FALSE(fitsDescriptor(largest)) << i;
  }
}

TEST(Edid, IsNotMadeFromABaseThatIsNotSound) {
  const InputMode mode{1920, 1080, 6000};
  EdidBytes damaged = base();
  damaged[200] = 1;
  EXPECT_EQ(ResT_verify_EDID(damaged), EdidCheck::kSound) << "without an extension nobody looks there";
  damaged[kEdidExtensionsAt] = 1;
  damaged[kEdidChecksumAt] -= 1;
  EXPECT_EQ(ResT_verify_EDID(damaged), EdidCheck::kSumError);
  EXPECT_FALSE(ResT_calEDID_by_model_new(damaged, mode));
  damaged[kEdidBlock + kEdidChecksumAt] = 0xFF;
  EXPECT_EQ(ResT_verify_EDID(damaged), EdidCheck::kSound);
  for (std::size_t i = 0; i < kEdidBlock; ++i) {
    EdidBytes flipped = base();
    flipped[i] ^= 0x10;
    EXPECT_EQ(ResT_verify_EDID(flipped), i < 8 ? EdidCheck::kHeadError : EdidCheck::kSumError) << i;
    EXPECT_FALSE(ResT_calEDID_by_model_new(flipped, mode)) << i;
  }
}

TEST(Edid, WrittenByAPeerNeedNotMakeSense) {
  EdidBytes edid = base();
  const auto modeWith = [&edid](std::initializer_list<std::pair<std::size_t, uint8_t>> changes) {
    EdidBytes changed = edid;
    for (const auto& [at, value] : changes) changed[kEdidTimingAt + at] = value;
    return modeOfEdid(changed);
  };
  EXPECT_EQ(modeWith({}), (InputMode{1920, 1080, 6000}));
  EXPECT_EQ(modeWith({{2, 0}, {3, 0}, {4, 0}}), (InputMode{0, 1080, 0})) << "a total of 0";
  EXPECT_EQ(modeWith({{0, 0}, {1, 0}}), (InputMode{1920, 1080, 0})) << "no clock";
  EXPECT_EQ(modeWith({{4, 0}, {7, 0}}), (InputMode{0x80, 0x38, 0})) << "a frame beyond 65535";
  EXPECT_EQ(modeOfEdid(std::span(edid).first(127)), InputMode{}) << "half a block";
}

// An EDID for each mode, or a reason why there is none: the decoder agrees with both.
void judge(unsigned width, unsigned height, unsigned frame) {
  SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + "@" + std::to_string(frame));
  const auto edid = forMode(width, height, frame);
  if (!edid) {
    const auto chosen = timingOfMode(
        {static_cast<uint16_t>(width), static_cast<uint16_t>(height), static_cast<uint16_t>(frame)});
    EXPECT_TRUE(!chosen || !fitsDescriptor(chosen->timing) || chosen->timing.pixelClock > 655'355'000);
    return;
  }
  if (wordOf(edid) < 1000) return;  // slower than any link: the decoder takes the timing for no timing
  const auto verdict = edid_decode::judge(std::span(*edid).first<kEdidBlock>());
  ASSERT_TRUE(verdict.first) << verdict.text;
  EXPECT_EQ(verdict.first->width, static_cast<int>(width));
  EXPECT_EQ(verdict.first->height, static_cast<int>(height));
  EXPECT_NEAR(verdict.first->hertz * 100, frame, std::max(41.0, 0.01 * frame));
  if (verdict.first->kilohertz <= 255 && verdict.first->hertz <= 255) {
    EXPECT_TRUE(verdict.conformant) << verdict.text;
  }
}

class JudgedEdid : public testing::Test {
 protected:
  void SetUp() override {
    if (!edid_decode::isInstalled()) GTEST_SKIP() << "edid-decode is not installed";
  }
};

TEST_F(JudgedEdid, OfEveryResolutionAndRateIsConformant) {
  for (const resolution_t& size : g_resolution_input) {
    for (const unsigned frame : {2398U, 5994U, 12000U}) {
      judge(size.width, size.height, frame);
    }
  }
}

TEST_F(JudgedEdid, OfRandomModesIsConformant) {
  std::mt19937 source(54);
  const auto random = [&source] { return static_cast<unsigned>(source()); };
  for (int n = 0; n < 30; ++n) {
    judge(300 + random() % 3800, 200 + random() % 2500, 500 + random() % 20000);
  }
}

}  // namespace
}  // namespace ORVE_MCUC
