// Driver calls are tried three times.
#pragma once

#include "mcucutil.h"

namespace ORVE_MCUC {

inline constexpr int kDriverTries = 3;
inline constexpr int kDriverPauseMicroseconds = 100;

// Calls until the result is 0, at most three times, with a pause after each failure. The last result.
template <class Call>
int withRetries(Call call) {
  int result = 0;
  for (int attempt = 0; attempt < kDriverTries; ++attempt) {
    result = call();
    if (result == 0) break;
    DelayMicroseconds(kDriverPauseMicroseconds);
  }
  return result;
}

}  // namespace ORVE_MCUC
