// When something that goes on until Ctrl-C is to end.
#pragma once

#include <chrono>
#include <string>

namespace parlctl {

// From its making on, SIGINT, SIGTERM and SIGHUP ask for the end instead of ending the process. seconds:
// after so many it is asked for, too; empty: never.
class Stop {
 public:
  explicit Stop(const std::string& seconds);  // throws peer::Error (Usage)
  bool wanted() const;

 private:
  std::chrono::steady_clock::time_point end_;
};

}  // namespace parlctl
