// What became of something that flash keeps and memory mirrors.
#pragma once

#include <cstdint>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

// Whether flash has given it. What was loaded once, or set as a whole, no later failure makes unknown again.
class LoadState {
 public:
  bool failed() const { return state_ == State::Failed; }
  bool loaded() const { return state_ == State::Loaded; }
  // Remembers the result of a load and passes it on.
  int note(int result) {
    if (result == 0) settle();
    if (result != 0 && !loaded()) state_ = State::Failed;
    return result;
  }
  // It was set as a whole: nothing of it is left to be loaded.
  void settle() { state_ = State::Loaded; }

 private:
  enum class State : uint8_t { Due, Failed, Loaded };
  RelaxedValue<State> state_;
};

}  // namespace ORVE_MCUC
