#include "proto/spaces/ratetest.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>

#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "platform/board.h"
#include "platform/lineecho.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr int kPasses = 10;
constexpr int kTransfers = 65535;
constexpr int kBannerLines = 4;

struct RateTest {
  const char* begins;
  const char* ends;
  const char* failed;
  const char* result;  // printf text: transfers, MB/s, seconds
};

constexpr RateTest kWriting{"=================start write UDP test=================== ",
                            "==================stop write UDP test=================== ",
                            "=== WirteFromPosNetPort ===Read FPGA Posi Info failed! ret = ",
                            "!!!!!!!!!!!!!!!!!!!!!!!!!!!发送%d ,速度%.2f MB/s,time %.2f s\n"};
constexpr RateTest kReading{"=================start Read UDP test=================== ",
                            "==================stop Read UDP test=================== ",
                            "=== ReadFromPosNetPort ===Read FPGA Posi Info failed! ret = ",
                            "!!!!!!!!!!!!!!!!!!!接收%d ,速度%.2f MB/s,time %.2f s\n"};

void logBanner(const char* text) {
  for (int i = 0; i < kBannerLines; ++i) PARLEND_TRACE(kInfo) << text;
}

// A standard output that nobody reads does not hold the daemon up.
void print(const RateTest& test, std::size_t length, int64_t milliseconds) {
  const int64_t kibibytes = int64_t{kTransfers} * static_cast<int64_t>(length) / 1024;
  const float rate = static_cast<float>(kibibytes) / static_cast<float>(milliseconds);
  const float seconds = static_cast<float>(milliseconds) / 1000.0F;
  std::array<char, 128> line{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::snprintf(line.data(), line.size(), test.result, kTransfers, static_cast<double>(rate),
                static_cast<double>(seconds));
#pragma GCC diagnostic pop
  platform::LineEcho().write(line.data());
}

template <class Transfer>
bool runTest(const RateTest& test, std::size_t length, Transfer transfer) {
  logBanner(test.begins);
  bool wholly = true;
  for (int pass = 0; pass < kPasses; ++pass) {
    const int64_t begin = board_monotonic_us();
    for (int i = 0; i < kTransfers; ++i) {
      const int ret = transfer();
      if (ret == 0) continue;
      PARLEND_TRACE(kError) << test.failed << ret;
      wholly = false;
    }
    print(test, length, std::max<int64_t>((board_monotonic_us() - begin) / 1000, 1));
  }
  logBanner(test.ends);
  return wholly;
}

}  // namespace

bool runWriteRateTest(std::size_t length) {
  const std::array<uint8_t, kMostRateTestBytes> scratch{};
  const auto bytes = std::span(scratch).first(std::min(length, scratch.size()));
  return runTest(kWriting, length, [&] { return writeFpga(fpga::kPositionTables, bytes); });
}

bool runReadRateTest(std::size_t length) {
  std::array<uint8_t, kMostRateTestBytes> scratch{};
  const auto bytes = std::span(scratch).first(std::min(length, scratch.size()));
  return runTest(kReading, length, [&] { return readFpga(fpga::kPositionTables, bytes); });
}

}  // namespace ORVE_MCUC
