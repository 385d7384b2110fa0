// What came of a request, in one word, and what the shell sees of it. Each word and each exit status stands
// here once; help, man pages and docs/parlctl.md print these tables.
#pragma once

#include <array>
#include <string_view>

#include "peer/error.h"

namespace parlctl {

enum ExitStatus : int { kDone = 0, kFound = 1, kUsage = 2, kNoDaemon = 3, kRefused = 4, kUnexpected = 5 };

struct StatusText {
  ExitStatus status;
  std::string_view text;
};
inline constexpr std::array kExitStatuses{
    StatusText{kDone, "done: what was asked for is carried out, or accepted where the word says so"},
    StatusText{kFound, "a check found something, or output was lost (full disk, closed output)"},
    StatusText{kUsage, "usage: a wrong argument, file or board directory; nothing was sent"},
    StatusText{kNoDaemon, "nobody answers: no daemon, no permission, or no reply in time"},
    StatusText{kRefused, "refused by the daemon, or not sent because no register is there"},
    StatusText{kUnexpected, "not as expected: a mismatch, a difference, a short or unreadable reply"},
};

enum class Outcome {
  Done,      // carried out, and seen to be: an answer is here, a file is written
  Found,     // carried out, and it found something
  Accepted,  // acknowledged by the daemon; whether it took effect was not looked at
  Verified,  // read back, and as it should be; the text says what was compared
  Mismatch,  // read back after a write, and not what was written
  Differs,   // two things that should agree do not
  Unknown,   // it cannot be seen
};

struct OutcomeText {
  std::string_view word;
  ExitStatus status;
  std::string_view meaning;
};
// In the order of Outcome.
inline constexpr std::array kOutcomes{
    OutcomeText{"done", kDone, "carried out, and seen to be"},
    OutcomeText{"found", kFound, "carried out, and something was found"},
    OutcomeText{"accepted", kDone, "acknowledged by the daemon; whether it took effect was not looked at"},
    OutcomeText{"verified", kDone, "read back, and as it should be; what was compared is named"},
    OutcomeText{"mismatch", kUnexpected, "read back after a write, and not what was written"},
    OutcomeText{"differs", kUnexpected, "two things that should agree do not"},
    OutcomeText{"unknown", kUnexpected, "it cannot be seen"},
};
static_assert(kOutcomes.size() == static_cast<std::size_t>(Outcome::Unknown) + 1);

constexpr const OutcomeText& textOf(Outcome outcome) {
  return kOutcomes[static_cast<std::size_t>(outcome)];
}

// A failure: its word for programs, and its exit status.
struct FailureText {
  peer::Failure failure;
  std::string_view word;
  ExitStatus status;
};
inline constexpr std::array kFailures{
    FailureText{peer::Failure::Usage, "usage", kUsage},
    FailureText{peer::Failure::NoDaemon, "no-daemon", kNoDaemon},
    FailureText{peer::Failure::TimeOut, "time-out", kNoDaemon},
    FailureText{peer::Failure::Acknowledge, "refused", kRefused},
    FailureText{peer::Failure::ShortReply, "short-reply", kUnexpected},
    FailureText{peer::Failure::Mismatch, "mismatch", kUnexpected},
    FailureText{peer::Failure::Board, "board", kUsage},
    FailureText{peer::Failure::LostOutput, "lost-output", kFound},
};
constexpr const FailureText& textOf(peer::Failure failure) {
  for (const FailureText& row : kFailures)
    if (row.failure == failure) return row;
  return kFailures[0];
}

}  // namespace parlctl
