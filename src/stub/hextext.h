// Bytes as hexadecimal text for a log line; composed only where the line will be written.
#pragma once

#include <memory>
#include <string_view>

#include "mcucutil.h"

namespace ORVE_MCUC {

// Text of up to Room characters, its zero included; empty when the bytes do not fit.
template <int Room>
class HexText {
 public:
  HexText(const unsigned char* bytes, int count)
      : text_(std::make_unique_for_overwrite<char[]>(Room)),
        length_(Bytes2String(reinterpret_cast<const char*>(bytes), count, text_.get(), Room)) {}
  const char* c_str() const { return text_.get(); }
  std::string_view view() const { return {text_.get(), static_cast<std::size_t>(length_)}; }

 private:
  std::unique_ptr<char[]> text_;
  int length_;
};

}  // namespace ORVE_MCUC
