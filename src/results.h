// Result codes of the register spaces and of the message channel, and the acknowledge codes of a frame.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

// What a space, a handler or a driver call returns. Only the acknowledge code and the data reach a requester.
enum Result : int {
  kFailed = -1,  // a driver call failed, or the request names nothing that exists
  kDone = 0,
  kRefused = 4,      // null request, unknown base, no work item
  kBeyondImage = 5,  // offset plus length runs past the space's image
  kBadLength = 6,    // length outside the row's limits
  kBadAccess = 7,    // access type not allowed, unknown code type, write without data
};

// Acknowledge codes in a frame.
enum Ack : uint8_t {
  kAckDone = 0,
  kAckNoAnswer = 1,  // a receiving card did not answer a read
  kAckChecksum = 2,
  kAckRefused = 4,
};

// Error codes of the message channel and of the calculations, negative as int.
constexpr int channelError(uint32_t code) {
  return static_cast<int>(code);
}
inline constexpr int kErrThread = channelError(0x80005001);     // thread not created; base codec operation
inline constexpr int kErrNoMessage = channelError(0x80005004);  // missing or unreadable message data
inline constexpr int kErrPortPara = channelError(0x80005011);   // ports of an advanced configuration refused
inline constexpr int kErrSend = channelError(0x80005036);       // send failed
inline constexpr int kErrEncode = channelError(0x8000503A);     // encoding failed

}  // namespace ORVE_MCUC
