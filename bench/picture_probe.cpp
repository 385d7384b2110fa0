// Prints on descriptor 3, in microseconds, what a load of the three stored gamma tables into the FPGA takes
// on average, and what copying the same bytes into a mapping of the FPGA's size takes.
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <vector>

#include "maps/gammamap.h"
#include "mcuctrace.h"
#include "platform/board.h"
#include "process/colour.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "rounds.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kResultFd = 3;
constexpr int kLoads = 200;
constexpr std::size_t kFpgaSize = 256U << 20;

// A bank whose tables differ and are all valid.
void storeBank() {
  for (std::size_t colour = 0; colour < 3; ++colour) {
    std::vector<uint8_t> bytes(flash::kGammaTableSize);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * (colour + 3) / 7);
    writeFlash(kGammaMap[colour].flash, bytes);
    writeFlash(kGammaMap[colour].tag, Data_Global::IsNewFlashTag);
  }
}

double microsecondsOfLoad() {
  SendGammaToFpga(kBank12Bit);
  const double start = bench::nowUs();
  for (int i = 0; i < kLoads; ++i) SendGammaToFpga(kBank12Bit);
  return (bench::nowUs() - start) / kLoads;
}

// The board's FPGA is a shared mapping of a sparse file as well.
double microsecondsOfCopy() {
  std::FILE* file = std::fopen("hw/bare.bin", "w+b");
  if (file == nullptr || ftruncate(fileno(file), kFpgaSize) != 0) return 0;
  void* mapped = mmap(nullptr, kFpgaSize, PROT_READ | PROT_WRITE, MAP_SHARED, fileno(file), 0);
  std::fclose(file);
  if (mapped == MAP_FAILED) return 0;
  auto* bus = static_cast<uint8_t*>(mapped);
  std::array<std::vector<uint8_t>, 3> tables;
  tables.fill(std::vector<uint8_t>(flash::kGammaTableSize, 0x5A));
  const auto copy = [&](int round) {
    for (std::size_t colour = 0; colour < tables.size(); ++colour) {
      tables[colour][0] = static_cast<uint8_t>(round);
      std::memcpy(bus + kGammaMap[colour].fpga, tables[colour].data(), tables[colour].size());
      asm volatile("" : : "r"(bus) : "memory");
    }
  };
  copy(0);
  const double start = bench::nowUs();
  for (int i = 0; i < kLoads; ++i) copy(i);
  const double result = (bench::nowUs() - start) / kLoads;
  munmap(mapped, kFpgaSize);
  return result;
}

}  // namespace

int main(int, char** argv) {
  char* arguments[] = {argv[0], nullptr};
  board_start(1, arguments);
  setTraceLevel(0);
  storeBank();
  dprintf(kResultFd, "%f\n", microsecondsOfLoad());
  dprintf(kResultFd, "%f\n", microsecondsOfCopy());
  return 0;
}
