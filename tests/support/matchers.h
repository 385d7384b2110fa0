// Words for replies and data, the same for the daemon in the test's process and for the running one.
#pragma once

#include <gmock/gmock.h>

#include "peer/frame.h"

/** Bytes that differ from their neighbours and from those 256 further on. */
inline peer::Bytes counting(std::size_t size, unsigned first = 1) {
  peer::Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(first + i * 7 + i / 256);
  return bytes;
}

inline peer::Bytes zeros(std::size_t size) {
  return peer::Bytes(size);
}

MATCHER_P(Carries, data, "is a reply with code 0 and these data") {
  return arg.ack == 0 && arg.data == data;
}
MATCHER(CarriesNothing, "is a reply with code 0 and no data") {
  return arg.ack == 0 && arg.data.empty();
}
MATCHER(IsRefused, "is a reply with code 4 and no data") {
  return arg.ack == 4 && arg.data.empty();
}
