// How far a long transfer or playback is, on standard error where somebody looks at it.
#pragma once

#include <cstddef>
#include <string>

namespace parlctl {

class Progress {
 public:
  // Shown only where standard error is a terminal and there is enough to do.
  Progress(std::string what, std::size_t whole, std::size_t enough);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void at(std::size_t done);

 private:
  std::string what_;
  std::size_t whole_;
  bool shown_;
  std::size_t percent_ = 101;
};

}  // namespace parlctl
