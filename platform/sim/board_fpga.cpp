#include "board_fpga.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <mutex>

#include "board_cards.h"
#include "board_conf.h"
#include "board_files.h"
#include "board_journal.h"
#include "platform/driver.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr std::size_t kBusSize = std::size_t{256} << 20;

struct Range {
  uint32_t first;
  uint32_t last;
};
// Registers that belong to the hardware: a bus write passes over them.
constexpr Range kStatusRegisters[] = {{0x1E, 0x1F},   {0x9E, 0x9F},         {0x120, 0x121},
                                      {0x126, 0x127}, {0x1D7, 0x1D7},       {0x1E0, 0x1E1},
                                      {0x1F2, 0x1FB}, {0xF04000, 0xF04003}, {0xF05100, 0xF05103}};
// Four ports a register, in the low nibble.
constexpr std::array<uint32_t, 4> kCopperLinks{0x1F, 0x9F, 0x126, 0x127};
constexpr uint32_t kCopperPhy = 0xF05100;
// Sixteen ports in two bytes a path.
constexpr uint32_t kFiberLinks[] = {0x1F2, 0x1F4};
constexpr uint32_t kFiberPhy[] = {0xF04000, 0xF04002};
constexpr uint32_t kFiberModule = 0x1D7;

unsigned char* bus = nullptr;
// The bus does one transfer at a time; a transfer and its journal line are one step.
std::mutex busLock;

bool isStatus(uint32_t address) {
  for (const Range& range : kStatusRegisters) {
    if (address >= range.first && address <= range.last) return true;
  }
  return false;
}

bool touchesStatus(uint32_t address, uint32_t length) {
  for (const Range& range : kStatusRegisters) {
    if (address <= range.last && range.first < address + length) return true;
  }
  return false;
}

bool onBus(uint32_t address, uint32_t length) {
  return address <= kBusSize && length <= kBusSize - address;
}

void showFiber(int which, uint16_t ports) {
  for (const uint32_t at : {kFiberLinks[which], kFiberPhy[which]}) {
    bus[at] = static_cast<unsigned char>(ports);
    bus[at + 1] = static_cast<unsigned char>(ports >> 8);
  }
}

void showLinks() {
  for (unsigned i = 0; i < kCopperLinks.size(); ++i) {
    const auto ports = static_cast<unsigned char>(conf().copperPorts >> 4 * i & 0x0F);
    bus[kCopperLinks[i]] = ports;
    bus[kCopperPhy + i] = ports;
  }
  showFiber(0, conf().fiber1Ports);
  showFiber(1, conf().fiber2Ports);
  bus[kFiberModule] = conf().fiberModule;
}

// Under busLock.
void store(uint32_t address, uint32_t length, const unsigned char* data) {
  if (!touchesStatus(address, length)) {
    std::memcpy(bus + address, data, length);
    return;
  }
  for (uint32_t i = 0; i < length; ++i) {
    if (!isStatus(address + i)) bus[address + i] = data[i];
  }
}

}  // namespace

bool openFpga(bool switchedOn) {
  const int file = openSized(path("hw/fpga.bin"), kBusSize);
  const bool ready = file >= 0 && (!switchedOn || clearFile(file));
  bus = ready ? static_cast<unsigned char*>(mapShared(file, kBusSize)) : nullptr;
  if (file >= 0) close(file);
  if (bus != nullptr && switchedOn) showLinks();
  return bus != nullptr;
}

void closeFpga() {
  const std::lock_guard guard(busLock);
  if (bus != nullptr) munmap(bus, kBusSize);
  bus = nullptr;
}

uint16_t linkedPorts() {
  const std::lock_guard guard(busLock);
  if (bus == nullptr) return 0;
  uint32_t ports = 0;
  for (unsigned i = 0; i < kCopperLinks.size(); ++i) ports |= (bus[kCopperLinks[i]] & 0x0FU) << 4 * i;
  for (const uint32_t at : kFiberLinks) ports |= bus[at] | static_cast<uint32_t>(bus[at + 1]) << 8;
  return static_cast<uint16_t>(ports);
}

int writeRegister(uint32_t address, uint8_t value) {
  const std::lock_guard guard(busLock);
  if (bus == nullptr || !onBus(address, 1)) return -1;
  store(address, 1, &value);
  return 0;
}

}  // namespace simboard

using namespace simboard;

int FPGA_UDP_Init(void) {
  return 0;
}

int WriteFPGABlock(unsigned char, uint32_t address, uint32_t length, const unsigned char* data) {
  {
    const std::lock_guard guard(busLock);
    const bool failed = takeFault(Fault::FpgaWrite, address, length) || !onBus(address, length);
    if (!failed) store(address, length, data);
    if (journalsWrites()) {
      JournalLine("fpga-write").address(address).number(length).bytes({data, length}).failedIf(failed);
    }
    if (failed) return -1;
  }
  cardPacketFromFpga(address, {data, length});
  return 0;
}

int ReadFPGABlock(unsigned char, uint32_t address, uint16_t length, unsigned char* buffer) {
  const std::lock_guard guard(busLock);
  const bool failed = takeFault(Fault::FpgaRead, address, length) || !onBus(address, length);
  if (!failed) std::memcpy(buffer, bus + address, length);
  if (journalsReads()) {
    const std::span<const unsigned char> read(buffer, failed ? 0 : length);
    JournalLine("fpga-read").address(address).number(length).bytes(read).failedIf(failed);
  }
  return failed ? -1 : 0;
}
