// Bytes as hexadecimal text for a log line; composed on the stack, and only where the line will be written.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "mcucutil.h"

namespace ORVE_MCUC {

// Text of up to Room characters, its zero included; empty when the bytes do not fit.
template <int Room>
class HexText {
 public:
  explicit HexText(std::span<const uint8_t> bytes)
      : length_(Bytes2String(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()),
                             text_, Room)) {}
  const char* c_str() const { return text_; }
  std::string_view view() const { return {text_, static_cast<std::size_t>(length_)}; }

 private:
  char text_[Room];  // filled up to its zero by Bytes2String
  int length_;
};

}  // namespace ORVE_MCUC
