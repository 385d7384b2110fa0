// What can go wrong between a peer and the daemon, with a text for people.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace peer {

enum class Failure {
  Usage,        // the caller asked for something that cannot be sent
  NoDaemon,     // nobody serves the socket, or the service closed the connection
  TimeOut,      // no answer within the time allowed
  Acknowledge,  // the daemon refused the request by its acknowledge code
  ShortReply,   // fewer data bytes than asked for, or not a frame at all
  Mismatch,     // what was read back is not what it should be
  Board,        // the board's files are missing or cannot be used
  LostOutput,   // what was to be told did not arrive: full disk, closed output
};

class Error : public std::runtime_error {
 public:
  Error(Failure failure, const std::string& text) : std::runtime_error(text), failure_(failure) {}
  Failure failure() const { return failure_; }

 private:
  Failure failure_;
};

// Throws Error with the text and what the system says about errno.
[[noreturn]] void failWithErrno(Failure failure, std::string_view text);

}  // namespace peer
