// Prints on descriptor 3, in microseconds: a load of the three stored gamma tables into the FPGA, and the
// same bytes copied into a mapping of the FPGA's size.
#include <sys/mman.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <vector>

#include "maps/gammamap.h"
#include "probe.h"
#include "process/colour.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kLoads = 500;
constexpr std::size_t kFpgaSize = 256U << 20;

using Tables = std::array<std::vector<uint8_t>, 3>;

Tables someTables() {
  Tables tables;
  for (std::size_t colour = 0; colour < tables.size(); ++colour) {
    tables[colour].resize(flash::kGammaTableSize);
    for (std::size_t i = 0; i < tables[colour].size(); ++i)
      tables[colour][i] = static_cast<uint8_t>(i * (colour + 3) / 7);
  }
  return tables;
}

void store(const Tables& tables) {
  for (std::size_t colour = 0; colour < tables.size(); ++colour) {
    writeFlash(kGammaMap[colour].flash, tables[colour]);
    writeFlash(kGammaMap[colour].tag, Data_Global::IsNewFlashTag);
  }
}

// The board's FPGA is a shared mapping of a sparse file, too.
double copyPlainly(const Tables& tables) {
  const int file = bench::openBeside("hw/bare.bin");
  if (ftruncate(file, kFpgaSize) != 0) std::abort();
  void* mapped = mmap(nullptr, kFpgaSize, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (mapped == MAP_FAILED) std::abort();
  auto* bus = static_cast<uint8_t*>(mapped);
  const double median = bench::medianTime(kLoads, [&](int) {
    for (std::size_t colour = 0; colour < tables.size(); ++colour)
      std::memcpy(bus + kGammaMap[colour].fpga, tables[colour].data(), tables[colour].size());
    asm volatile("" : : "r"(bus) : "memory");  // nobody reads it
  });
  munmap(mapped, kFpgaSize);
  close(file);
  return median;
}

}  // namespace

int main(int, char** argv) {
  bench::startBoard(argv);
  const Tables tables = someTables();
  store(tables);
  const double load = bench::medianTime(kLoads, [](int) { SendGammaToFpga(kBank12Bit); });
  dprintf(bench::kResultFd, "%f %f\n", load, copyPlainly(tables));
  return 0;
}
