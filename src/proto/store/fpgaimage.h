// Images of registers that the FPGA holds, too.
#pragma once

#include <bitset>
#include <cstdint>
#include <span>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

// Knows which of its bytes the FPGA should have and has not: what flash held while the FPGA was not loaded,
// and what could not be written. A read of the FPGA brings old ones for them, which take nothing back. What
// is put into the image alone, and so kept from the FPGA on purpose, is not among them. All of it under the
// image lock; ranges that do not lie inside do nothing, and answer false.
template <std::size_t N>
class FpgaImage : public ByteImage<N> {
 public:
  // What somebody decided.
  bool decide(std::span<const uint8_t> bytes, std::size_t at) {
    if (!this->copyFrom(bytes, at)) return false;
    for (std::size_t i = at; i < at + bytes.size(); ++i) decided_[i] = true;
    return true;
  }
  // The result of a write of these to the FPGA, and whether the FPGA is loaded, before which it keeps
  // nothing. Passes the result on.
  int written(std::size_t at, std::size_t count, int result, bool loaded) {
    if (!fits(N, at, count)) return result;
    for (std::size_t i = at; i < at + count; ++i) ahead_[i] = (result != 0 || !loaded) && !follows_[i];
    return result;
  }
  // Here the FPGA tells and the image follows, whatever is put or loaded from now on.
  void follow(std::size_t at, std::size_t count) {
    if (!fits(N, at, count)) return;
    for (std::size_t i = at; i < at + count; ++i) follows_[i] = true;
  }
  bool isAhead(std::size_t at) const { return at < N && ahead_[at]; }
  bool isDecided(std::size_t at) const { return at < N && decided_[at]; }
  // What the FPGA holds.
  bool refresh(std::span<const uint8_t> bytes, std::size_t at) {
    if (!fits(N, at, bytes.size())) return false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (!ahead_[at + i]) (*this)[at + i] = bytes[i];
    }
    return true;
  }
  // What flash holds; late, after loads that failed, all but what was decided meanwhile.
  bool load(std::span<const uint8_t> bytes, std::size_t at, bool late) {
    if (!fits(N, at, bytes.size())) return false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (!late || !decided_[at + i]) (*this)[at + i] = bytes[i];
      ahead_[at + i] = !follows_[at + i];
      decided_[at + i] = false;
    }
    return true;
  }

 private:
  std::bitset<N> ahead_;
  std::bitset<N> decided_;
  std::bitset<N> follows_;
};

}  // namespace ORVE_MCUC
