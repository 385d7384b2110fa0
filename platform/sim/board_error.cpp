#include "board_error.h"

#include <unistd.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/board.h"
#include "platform/lineecho.h"

namespace simboard {
namespace {

constexpr int64_t kIntervalUs = 1'000'000;

struct Told {
  std::optional<int64_t> atUs;
  unsigned leftOut = 0;
};

constinit std::mutex lock;
constinit std::array<Told, 3> told{};

}  // namespace

// Standard error is looked at anew for each line: what it leads to may have been replaced.
void errorLine(std::string line) {
  line += '\n';
  static constinit std::mutex oneAtATime;
  const std::lock_guard guard(oneAtATime);
  platform::LineEcho(STDERR_FILENO).write(line);
}

void complain(Complaint about, const std::string& line) {
  unsigned leftOut = 0;
  {
    const std::lock_guard guard(lock);
    Told& kind = told[static_cast<std::size_t>(about)];
    const int64_t now = board_monotonic_us();
    if (kind.atUs && now - *kind.atUs < kIntervalUs) {
      ++kind.leftOut;
      return;
    }
    kind.atUs = now;
    leftOut = std::exchange(kind.leftOut, 0);
  }
  errorLine(leftOut == 0 ? line : line + " (" + std::to_string(leftOut) + " more since the last line)");
}

}  // namespace simboard
