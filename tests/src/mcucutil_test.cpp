#include "mcucutil.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <string>

namespace ORVE_MCUC {
namespace {

TEST(Bytes2String, RendersWhatFitsTogetherWithItsEndAndEmptiesTheTextOtherwise) {
  const std::array<char, 3> bytes{0x00, static_cast<char>(0xFF), 0x1A};
  std::string text(10, '#');
  EXPECT_EQ(Bytes2String(bytes.data(), 3, text.data(), 10), 9);
  EXPECT_STREQ(text.c_str(), "00 FF 1A ");

  text.assign(10, '#');
  EXPECT_EQ(Bytes2String(bytes.data(), 3, text.data(), 9), 0);
  EXPECT_EQ(text[0], '\0');
  EXPECT_EQ(text.substr(1), "#########");
}

TEST(Bytes2String, RefusesWhatCannotBeRenderedWithoutTouchingTheTextBeyondItsSize) {
  const char byte = 1;
  std::string text(4, '#');
  EXPECT_EQ(Bytes2String(&byte, 1, text.data(), 0), 0);
  EXPECT_EQ(Bytes2String(&byte, 1, nullptr, 100), 0);
  EXPECT_EQ(text, "####");
  // Three times these counts is small again, or negative, in 32 bits.
  for (const int count : {0, -1, INT_MIN, INT_MAX, 0x55555556}) {
    EXPECT_EQ(Bytes2String(&byte, count, text.data(), 4), 0) << count;
  }
  EXPECT_EQ(Bytes2String(nullptr, 1, text.data(), 4), 0);
}

TEST(Delay, TakesNoTimeWhenTestsSwitchItOff) {
  setDelayScale(0);
  const auto start = std::chrono::steady_clock::now();
  Delay(INT_MAX);
  DelayMicroseconds(INT_MAX);
  setDelayScale(100);
  Delay(-5);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(1));
}

TEST(StandardStreams, AClosedOneIsOpenedSoThatNoFileTakesItsPlace) {
  const int saved = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  openMissingStandardStreams();
  EXPECT_GE(fcntl(STDIN_FILENO, F_GETFD), 0);
  EXPECT_GE(fcntl(STDOUT_FILENO, F_GETFD), 0);
  dup2(saved, STDIN_FILENO);
  close(saved);
}

}  // namespace
}  // namespace ORVE_MCUC
