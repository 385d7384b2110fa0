// Prints on descriptor 3, in microseconds: a feature write from its work item to the image of 512 bytes in
// flash, the same bytes written plainly.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"
#include "process/tprocess.h"
#include "rounds.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kResultFd = 3;
constexpr int kWrites = 1000;
constexpr std::size_t kImageBytes = 512;
constexpr uint32_t kPlainRegister = reg::kFeature + 0x30;  // stored, written through, saved; nothing else

template <class Work>
double medianTime(Work work) {
  std::vector<double> samples;
  for (int i = 0; i < kWrites; ++i) {
    const double start = bench::nowUs();
    work(static_cast<uint8_t>(i));
    samples.push_back(bench::nowUs() - start);
  }
  return bench::median(samples);
}

double writeFeatures() {
  std::array<uint8_t, 7> item{};
  putLe32(item, 0, kPlainRegister);
  putLe16(item, 4, 1);
  return medianTime([&](uint8_t n) {
    item[6] = n;
    Tprocess::Sprocess_DoFeatureInfo(static_cast<int>(item.size()), reinterpret_cast<char*>(item.data()));
  });
}

double writePlainly() {
  char path[PATH_MAX];
  const int file = board_path("/plain-image", path, sizeof path) == 0
                       ? open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600)
                       : -1;
  if (file < 0) std::abort();
  std::array<uint8_t, kImageBytes> image{};
  return medianTime([&](uint8_t n) {
    image[0] = n;
    if (pwrite(file, image.data(), image.size(), 0) != static_cast<ssize_t>(image.size())) std::abort();
  });
}

}  // namespace

int main(int, char** argv) {
  char* arguments[] = {argv[0], nullptr};
  board_start(1, arguments);
  setTraceLevel(0);
  setDelayScale(0);
  const double feature = writeFeatures();
  dprintf(kResultFd, "%f %f\n", feature, writePlainly());
  return 0;
}
