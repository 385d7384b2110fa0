// How long everything is measured, and the statistics of it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <functional>
#include <vector>

namespace bench {

// One full run takes about two minutes, a quick one a quarter of that with coarser numbers.
struct Effort {
  int rounds = 9;
  int roundTrips = 4000;        // of one client in one round
  int manyClientsTrips = 1000;  // of each of the 16 clients in one round
  int traceLines = 50000;       // at most 20 MiB of them, so that no file is changed
  int queueItems = 400;
  int spawns = 15;
  int idleSeconds = 5;
  int growthRequests = 100000;
  int floodReads = 2000;
  int floodWrites = 50;
};
inline constexpr Effort kFull{};
inline constexpr Effort kQuick{.rounds = 3,
                               .roundTrips = 1500,
                               .manyClientsTrips = 300,
                               .traceLines = 20000,
                               .queueItems = 100,
                               .spawns = 5,
                               .idleSeconds = 2,
                               .growthRequests = 20000,
                               .floodReads = 500,
                               .floodWrites = 10};

// Monotonic time in microseconds.
inline double nowUs() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) * 1e6 + static_cast<double>(t.tv_nsec) / 1e3;
}

// The sample that a part (0 .. 1) of all samples does not exceed; 0 of no samples.
inline double quantile(std::vector<double> samples, double part) {
  if (samples.empty()) return 0;
  const auto at = static_cast<std::ptrdiff_t>(part * static_cast<double>(samples.size() - 1));
  std::nth_element(samples.begin(), samples.begin() + at, samples.end());
  return samples[static_cast<std::size_t>(at)];
}
inline double median(const std::vector<double>& samples) {
  return quantile(samples, 0.5);
}

// Contestants measured in turns: results[c][r] is what contestant c measured in round r. Every second round
// runs backwards, so that nobody always follows the same neighbour.
using Contestant = std::function<double()>;
inline std::vector<std::vector<double>> inTurns(int rounds, const std::vector<Contestant>& contestants) {
  std::vector<std::vector<double>> results(contestants.size());
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      const std::size_t at = round % 2 == 0 ? i : contestants.size() - 1 - i;
      results[at].push_back(contestants[at]());
    }
  }
  return results;
}

}  // namespace bench
