#include "stop.h"

#include <csignal>

#include "values.h"

namespace parlctl {

namespace {

volatile std::sig_atomic_t stopped = 0;

void stopOnSignal(int /*signal*/) {
  stopped = 1;
}

}  // namespace

Stop::Stop(const std::string& seconds) {
  using Clock = std::chrono::steady_clock;
  end_ = seconds.empty() ? Clock::time_point::max() : Clock::now() + duration(seconds);
  std::signal(SIGINT, stopOnSignal);
  std::signal(SIGTERM, stopOnSignal);
  if (std::signal(SIGHUP, stopOnSignal) == SIG_IGN) std::signal(SIGHUP, SIG_IGN);  // nohup means it
}

bool Stop::wanted() const {
  return stopped != 0 || std::chrono::steady_clock::now() >= end_;
}

}  // namespace parlctl
