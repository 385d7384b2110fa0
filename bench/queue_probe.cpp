// Prints on descriptor 3 how many microseconds pass from adding an item to the start of its handler (median),
// and how many handler times the longest addition behind 20 waiting items takes.
#include "queue_probe.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "platform/board.h"
#include "rounds.h"

namespace bench {
namespace {

constexpr int kWaiting = 20;
constexpr int kTrials = 10;

Queue* queue;
std::atomic<double> startedAfterUs{0};
std::atomic<int> handled{0};

void work(double us) {
  for (const double start = nowUs(); nowUs() - start < us;) {
  }
}

void waitUntilHandled(int count) {
  while (handled.load() < count) usleep(200);
}

// Additions come at moments that have nothing to do with the period of a polling thread.
double medianStart(int items) {
  std::vector<double> samples;
  for (int i = 0; i < items; ++i) {
    usleep(static_cast<useconds_t>(500 + i * 37 % 211));
    const int before = handled;
    queue->add({nowUs(), 0, 0});
    waitUntilHandled(before + 1);
    samples.push_back(startedAfterUs);
  }
  return median(samples);
}

// One handler adds the waiting items; the addition that is measured comes while the first of them runs.
double longestAddition() {
  double longest = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    const int before = handled;
    queue->add({nowUs(), kHandlerUs, kWaiting});
    waitUntilHandled(before + 1);
    const double start = nowUs();
    queue->add({start, kHandlerUs, 0});
    longest = std::max(longest, nowUs() - start);
    waitUntilHandled(before + kWaiting + 2);
  }
  return longest / kHandlerUs;
}

}  // namespace

void handle(const Item& item) {
  startedAfterUs = nowUs() - item.addedUs;
  work(item.workUs);
  for (int i = 0; i < item.followers; ++i) queue->add({nowUs(), item.workUs, 0});
  ++handled;
}

}  // namespace bench

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: bench_queue parlend|polled ITEMS\n", stderr);
    return 2;
  }
  board_start(argc, argv);
  bench::queue = std::string_view(argv[1]) == "polled" ? &bench::polledQueue() : &bench::parlendQueue();
  const double start = bench::medianStart(static_cast<int>(std::strtol(argv[2], nullptr, 10)));
  const double longest = bench::longestAddition();
  const bool printed = dprintf(3, "%f %f\n", start, longest) > 0;
  std::fflush(nullptr);
  _exit(printed ? 0 : 1);  // the queues' threads never end
}
