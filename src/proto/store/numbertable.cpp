#include "proto/store/numbertable.h"

#include <algorithm>

namespace ORVE_MCUC {

int writeNumberPart(const RegisterImages& images, const NumberPart& part, std::size_t at,
                    std::span<const uint8_t> bytes, FailureWords words) {
  const std::size_t first = std::max(at, part.at);
  const std::size_t end = std::min(at + bytes.size(), part.at + part.length);
  std::array<uint8_t, 256> room{};
  const auto whole = std::span(room).first(std::min(part.length, room.size()));
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  if (first < end && !VsPartPara.decide(bytes.subspan(first - at, end - first), first)) return -1;
  if (!VsPartPara.copyTo(whole, part.at)) return -1;
  return VsPartPara.written(part.at, whole.size(), writeFpga(part.fpga, whole, words), isOnline(images));
}

}  // namespace ORVE_MCUC
