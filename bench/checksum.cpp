// The checksum of the largest frame.
#include <stdexcept>

#include "checksum_byteloop.h"
#include "measures.h"
#include "stub/mcucmessagestruct.h"

namespace bench {
namespace {

constexpr std::size_t kBytes = 65536;
constexpr int kRepeats = 500;

uint16_t daemonChecksum(const std::vector<unsigned char>& bytes) {
  unsigned short sum = 0;
  ORVE_MCUC::MCUCMsg::CaculCheckout(bytes.data(), 0, static_cast<int>(bytes.size()), &sum);
  return sum;
}

template <class Checksum>
double timeOf(const Checksum& checksum, uint16_t expected) {
  const double start = nowUs();
  for (int i = 0; i < kRepeats; ++i)
    if (checksum() != expected) throw std::runtime_error("the checksums differ");
  return (nowUs() - start) / kRepeats;
}

}  // namespace

void measureChecksum(const Programs& /*programs*/, const Effort& effort, Table& table) {
  std::vector<unsigned char> bytes(kBytes);
  for (std::size_t i = 0; i < kBytes; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
  const uint16_t expected = byteLoopChecksum(bytes.data(), bytes.size());
  const auto results = inTurns(
      effort.rounds,
      {[&] { return timeOf([&] { return daemonChecksum(bytes); }, expected); },
       [&] { return timeOf([&] { return byteLoopChecksum(bytes.data(), bytes.size()); }, expected); }});
  table.add(
      against("checksum of 64 KiB", "us", results[0], "byte loop", results[1], Goal::RatioAtMost, 0.25));
}

}  // namespace bench
