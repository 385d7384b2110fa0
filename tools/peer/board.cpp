#include "peer/board.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <span>

#include "peer/error.h"

namespace peer {

namespace {

constexpr const char* kFpga = "hw/fpga.bin";
constexpr const char* kFlash = "hw/flash.bin";
constexpr const char* kControl = "hw/control.bin";
constexpr uint64_t kFpgaSize = 0x10000000;
constexpr uint64_t kFlashSize = 0x02000000;
constexpr uint64_t kClockOffset = 8;
constexpr uint64_t kFaultOffset = 16;
constexpr uint64_t kAfterOffset = 84;
constexpr uint64_t kRangeOffset = 148;
constexpr uint64_t kPowerCutOffset = 188;
constexpr uint64_t kSensorOffset = 256;

// Where a link shows: the registers of port 0, 1 × ports, 2 × ports, ... with so many ports in each.
struct LinkPlace {
  std::array<uint32_t, 4> registers;
  unsigned portsEach;
};
constexpr LinkPlace kCopperStatus{{0x1F, 0x9F, 0x126, 0x127}, 4};
constexpr LinkPlace kCopperPhy{{0xF05100, 0xF05101, 0xF05102, 0xF05103}, 4};
constexpr LinkPlace kFiber1Status{{0x1F2, 0x1F3}, 8};
constexpr LinkPlace kFiber1Phy{{0xF04000, 0xF04001}, 8};
constexpr LinkPlace kFiber2Status{{0x1F4, 0x1F5}, 8};
constexpr LinkPlace kFiber2Phy{{0xF04002, 0xF04003}, 8};
constexpr std::array<std::array<LinkPlace, 2>, 3> kLinkPlaces{
    {{kCopperStatus, kCopperPhy}, {kFiber1Status, kFiber1Phy}, {kFiber2Status, kFiber2Phy}}};

class File {
 public:
  File(const std::filesystem::path& path, int flags)
      : path_(path), descriptor_(open(path.c_str(), flags | O_CLOEXEC)) {
    if (descriptor_ < 0) failWithErrno(Failure::Board, path_.string());
  }
  ~File() { close(descriptor_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  // Bytes behind the end of the file were never written: zero.
  void read(uint64_t offset, std::span<uint8_t> to) const {
    while (!to.empty()) {
      const ssize_t got = pread(descriptor_, to.data(), to.size(), static_cast<off_t>(offset));
      if (got < 0) failWithErrno(Failure::Board, "reading " + path_.string());
      if (got == 0) return;
      offset += static_cast<uint64_t>(got);
      to = to.subspan(static_cast<std::size_t>(got));
    }
  }
  void write(uint64_t offset, std::span<const uint8_t> from) const {
    while (!from.empty()) {
      const ssize_t done = pwrite(descriptor_, from.data(), from.size(), static_cast<off_t>(offset));
      if (done <= 0) failWithErrno(Failure::Board, "writing " + path_.string());
      offset += static_cast<uint64_t>(done);
      from = from.subspan(static_cast<std::size_t>(done));
    }
  }

 private:
  std::filesystem::path path_;
  int descriptor_;
};

void within(uint64_t offset, uint64_t length, uint64_t size, const char* what) {
  if (offset > size || length > size - offset)
    throw Error(Failure::Usage, std::string("outside the ") + what);
}

unsigned atMost(unsigned value, unsigned limit, const char* what) {
  if (value >= limit)
    throw Error(Failure::Usage, std::string("no ") + what + " " + std::to_string(value) +
                                    ": they go from 0 to " + std::to_string(limit - 1));
  return value;
}

uint64_t fromLittleEndian(const Bytes& bytes) {
  uint64_t value = 0;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) value = value << 8 | *byte;
  return value;
}

Bytes littleEndian(uint64_t value, std::size_t count) {
  Bytes bytes(count);
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(value);
    value >>= 8;
  }
  return bytes;
}

}  // namespace

std::optional<unsigned> faultIndex(std::string_view name) {
  const auto* hit = std::find(kFaultNames.begin(), kFaultNames.end(), name);
  if (hit == kFaultNames.end()) return std::nullopt;
  return static_cast<unsigned>(hit - kFaultNames.begin());
}

bool Board::hasHardware() const {
  return std::filesystem::exists(directory_ / kControl);
}

bool Board::isOn() const {
  return std::filesystem::exists(directory_ / kFpga);
}

Bytes Board::get(const char* file, uint64_t offset, std::size_t length) const {
  Bytes bytes(length);
  File(directory_ / file, O_RDONLY).read(offset, bytes);
  return bytes;
}

void Board::put(const char* file, uint64_t offset, const Bytes& bytes) const {
  File(directory_ / file, O_RDWR).write(offset, bytes);
}

uint32_t Board::word(uint64_t offset) const {
  return static_cast<uint32_t>(fromLittleEndian(get(kControl, offset, 4)));
}

void Board::setWord(uint64_t offset, uint32_t value) const {
  put(kControl, offset, littleEndian(value, 4));
}

bool Board::isTaken() const {
  const int lock = open((directory_ / "run/lock").c_str(), O_RDWR | O_CLOEXEC);
  if (lock < 0) return false;
  const bool taken = flock(lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(lock);
  return taken;
}

void Board::switchOff() const {
  if (isTaken())
    throw Error(Failure::Usage, "a daemon has the board " + directory_.string() + ": end it first");
  std::error_code error;
  std::filesystem::remove(directory_ / kFpga, error);
  if (error) throw Error(Failure::Board, (directory_ / kFpga).string() + ": " + error.message());
}

Bytes Board::fpga(uint32_t address, std::size_t length) const {
  within(address, length, kFpgaSize, "FPGA bus");
  return get(kFpga, address, length);
}

void Board::setFpga(uint32_t address, const Bytes& bytes) const {
  within(address, bytes.size(), kFpgaSize, "FPGA bus");
  put(kFpga, address, bytes);
}

Bytes Board::flash(uint32_t address, std::size_t length) const {
  within(address, length, kFlashSize, "flash");
  return get(kFlash, address, length);
}

void Board::setFlash(uint32_t address, const Bytes& bytes) const {
  within(address, bytes.size(), kFlashSize, "flash");
  put(kFlash, address, bytes);
}

bool Board::link(unsigned port, Medium medium) const {
  const LinkPlace& place = kLinkPlaces[static_cast<std::size_t>(medium)][0];
  atMost(port, kPorts, "output port");
  return (fpga(place.registers[port / place.portsEach], 1)[0] >> (port % place.portsEach) & 1) != 0;
}

void Board::setLink(unsigned port, Medium medium, bool up) const {
  atMost(port, kPorts, "output port");
  for (const LinkPlace& place : kLinkPlaces[static_cast<std::size_t>(medium)]) {
    const uint32_t address = place.registers[port / place.portsEach];
    const auto bit = static_cast<uint8_t>(1U << (port % place.portsEach));
    Bytes byte = fpga(address, 1);
    byte[0] = static_cast<uint8_t>(up ? byte[0] | bit : byte[0] & ~bit);
    setFpga(address, byte);
  }
}

uint32_t Board::fault(unsigned index) const {
  atMost(index, kFaultNames.size(), "fault counter");
  return word(kFaultOffset + uint64_t{4} * index);
}

void Board::setFault(unsigned index, uint32_t count) const {
  atMost(index, kFaultNames.size(), "fault counter");
  setWord(kFaultOffset + uint64_t{4} * index, count);
}

FaultPlan Board::faultPlan(unsigned index) const {
  FaultPlan plan{.count = fault(index)};
  plan.after = word(kAfterOffset + uint64_t{4} * index);
  if (index >= kFaultRanges) return plan;
  plan.first = word(kRangeOffset + uint64_t{8} * index);
  plan.last = word(kRangeOffset + uint64_t{8} * index + 4);
  return plan;
}

// The counter comes last, and zero before: nothing of the plan holds until all of it does.
void Board::setFaultPlan(unsigned index, const FaultPlan& plan) const {
  setFault(index, 0);
  setWord(kAfterOffset + uint64_t{4} * index, plan.after);
  if (index < kFaultRanges) {
    setWord(kRangeOffset + uint64_t{8} * index, plan.first);
    setWord(kRangeOffset + uint64_t{8} * index + 4, plan.last);
  }
  setFault(index, plan.count);
}

PowerCut Board::powerCut() const {
  return {word(kPowerCutOffset), word(kPowerCutOffset + 4), word(kPowerCutOffset + 8)};
}

void Board::setPowerCut(const PowerCut& cut) const {
  setWord(kPowerCutOffset, 0);
  setWord(kPowerCutOffset + 4, cut.done);
  setWord(kPowerCutOffset + 8, cut.sectors);
  setWord(kPowerCutOffset, cut.atWrite);
}

uint32_t Board::sensor(unsigned index) const {
  atMost(index, kSensors, "sensor");
  return word(kSensorOffset + uint64_t{4} * index);
}

void Board::setSensor(unsigned index, uint32_t lux) const {
  atMost(index, kSensors, "sensor");
  setWord(kSensorOffset + uint64_t{4} * index, lux);
}

int64_t Board::clockOffset() const {
  return static_cast<int64_t>(fromLittleEndian(get(kControl, kClockOffset, 8)));
}

void Board::setClockOffset(int64_t seconds) const {
  put(kControl, kClockOffset, littleEndian(static_cast<uint64_t>(seconds), 8));
}

std::vector<std::string> Board::journal() const {
  std::ifstream file(directory_ / "hw/journal.log");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

}  // namespace peer
