// FPGA bus and parameter flash.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <mutex>

#include "platform/driver.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr uint32_t kFpgaSize = 256U << 20;
constexpr uint32_t kFlashSize = 32U << 20;
unsigned char* fpga = nullptr;
int flashFile = -1;
std::mutex busLock;

bool isStatus(uint32_t a) {
  return a == 0x1E || a == 0x1F || a == 0x9E || a == 0x9F || a == 0x120 || a == 0x121 || a == 0x126 ||
         a == 0x127 || a == 0x1D7 || a == 0x1E0 || a == 0x1E1 || (a >= 0x1F2 && a <= 0x1FB) ||
         (a >= 0xF04000 && a <= 0xF04003) || (a >= 0xF05100 && a <= 0xF05103);
}

bool within(uint32_t address, uint32_t length, uint32_t size) {
  return address <= size && length <= size - address;
}

uint16_t ports(const std::string& text) {
  uint16_t mask = 0;
  for (const char* at = text.c_str(); *at != '\0';) {
    char* end = nullptr;
    const unsigned long first = std::strtoul(at, &end, 10);
    if (end == at) {
      ++at;
      continue;
    }
    unsigned long last = first;
    if (*end == '-') last = std::strtoul(end + 1, &end, 10);
    for (unsigned long p = first; p <= last && p < 16; ++p) mask = static_cast<uint16_t>(mask | 1U << p);
    at = end;
  }
  return mask;
}

std::string value(const char* key) {
  const auto found = conf().find(key);
  return found == conf().end() ? "" : found->second;
}

void showLinks() {
  const uint16_t copper = ports(value("copper_ports"));
  const uint32_t nibbles[] = {0x1F, 0x9F, 0x126, 0x127};
  for (unsigned i = 0; i < 4; ++i) {
    const auto part = static_cast<unsigned char>(copper >> 4 * i & 0x0F);
    fpga[nibbles[i]] = part;
    fpga[0xF05100 + i] = part;
  }
  const uint16_t fiber[] = {ports(value("fiber1_ports")), ports(value("fiber2_ports"))};
  std::memcpy(fpga + 0x1F2, fiber, 4);
  std::memcpy(fpga + 0xF04000, fiber, 4);
  fpga[0x1D7] = static_cast<unsigned char>(std::strtoul(value("fiber_module").c_str(), nullptr, 0));
}

}  // namespace

void powerOn() {
  const bool first = access(path("hw/powered").c_str(), F_OK) != 0;
  const int bus = open(path("hw/fpga.bin").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  flashFile = open(path("hw/flash.bin").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if ((first && ftruncate(bus, 0) != 0) || ftruncate(bus, kFpgaSize) != 0 ||
      ftruncate(flashFile, kFlashSize) != 0) {
    std::exit(2);
  }
  fpga = static_cast<unsigned char*>(mmap(nullptr, kFpgaSize, PROT_READ | PROT_WRITE, MAP_SHARED, bus, 0));
  close(bus);
  if (!first) return;
  showLinks();
  std::ofstream(path("sys/class/fpga/fpga_conf")) << (value("fpga_status") == "down" ? "0\n" : "1\n");
  if (value("fpga_autoload") == "no")
    unlink(path("etc/init.d/flag_fpgaload").c_str());
  else
    std::ofstream(path("etc/init.d/flag_fpgaload"));
  std::ofstream(path("hw/powered"));
}

}  // namespace simboard

using namespace simboard;

extern "C" int FPGA_UDP_Init() {
  return 0;
}
extern "C" int Flash_Init() {
  return 0;
}

extern "C" int WriteFPGABlock(unsigned char, uint32_t address, uint32_t length, const unsigned char* data) {
  const bool failed = takeFault(Fault::FpgaWrite) || !within(address, length, kFpgaSize);
  journal("fpga-write " + hexWord(address) + " " + std::to_string(length) + " " + hexBytes(data, length) +
          (failed ? " failed" : ""));
  if (failed) return -1;
  const std::lock_guard guard(busLock);
  for (uint32_t i = 0; i < length; ++i) {
    if (!isStatus(address + i)) fpga[address + i] = data[i];
  }
  return 0;
}

extern "C" int ReadFPGABlock(unsigned char, uint32_t address, uint16_t length, unsigned char* buffer) {
  if (takeFault(Fault::FpgaRead) || !within(address, length, kFpgaSize)) return -1;
  const std::lock_guard guard(busLock);
  std::memcpy(buffer, fpga + address, length);
  return 0;
}

extern "C" int ReadDataFromFlashx(uint32_t address, uint32_t length, unsigned char* buffer) {
  if (takeFault(Fault::FlashRead) || !within(address, length, kFlashSize)) return -1;
  return pread(flashFile, buffer, length, static_cast<off_t>(address)) == static_cast<ssize_t>(length) ? 0
                                                                                                       : -1;
}

extern "C" int WriteDataToFlashx(uint32_t address, uint32_t length, const unsigned char* data) {
  const bool failed =
      takeFault(Fault::FlashWrite) || !within(address, length, kFlashSize) ||
      pwrite(flashFile, data, length, static_cast<off_t>(address)) != static_cast<ssize_t>(length);
  journal("flash-write " + hexWord(address) + " " + std::to_string(length) + " " + hexBytes(data, length) +
          (failed ? " failed" : ""));
  return failed ? -1 : 0;
}

// Writes into the copy of the factory image that the next power-on takes as the flash.
extern "C" int WriteDataToFactoryTmpFlashx(uint32_t address, uint32_t length, const unsigned char* data) {
  bool failed = takeFault(Fault::FactoryWrite) || !within(address, length, kFlashSize);
  const int file = failed ? -1
                          : open(path("usr/orve/etc/sysconf/kespara_factory_tmp").c_str(),
                                 O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  failed =
      file < 0 || pwrite(file, data, length, static_cast<off_t>(address)) != static_cast<ssize_t>(length);
  if (file >= 0) close(file);
  journal("factory-write " + hexWord(address) + " " + std::to_string(length) + " " + hexBytes(data, length) +
          (failed ? " failed" : ""));
  return failed ? -1 : 0;
}
