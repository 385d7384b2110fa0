// A board directory as somebody beside the daemon sees it: what the hardware holds, and what is plugged in.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "peer/frame.h"

namespace peer {

enum class Medium { Copper, Fiber1, Fiber2 };

// The fault counters in the order of the control page.
inline constexpr std::array<std::string_view, 16> kFaultNames{
    "fpga-write", "fpga-read",    "flash-write", "flash-read",   "factory-write", "card-write",
    "card-read",  "message-send", "env-open",    "env-set",      "date-text",     "time-text",
    "edid-read",  "edid-load",    "network",     "message-queue"};
// The place of a fault counter on the control page; nothing for another name.
std::optional<unsigned> faultIndex(std::string_view name);

inline constexpr uint32_t kAlways = 0xFFFFFFFF;  // a fault counter: every call fails
inline constexpr unsigned kPorts = 16;
inline constexpr unsigned kSensors = 32;

// The next `count` calls of a kind fail, after `after` of them have passed; with a range only calls that
// touch it count.
struct FaultPlan {
  uint32_t count = 0;
  uint32_t after = 0;
  uint32_t first = 0;
  uint32_t last = 0;  // 0, 0: everywhere
};
inline constexpr unsigned kFaultRanges = 5;

// The power goes at a flash write to come, and that much of it is still done.
struct PowerCut {
  uint32_t atWrite = 0;  // from now; 0: never
  uint32_t done = 0;     // 0: nothing, 1: all of it, 2: the first `sectors` of 512 bytes
  uint32_t sectors = 0;
};

// All operations throw Error (Board) when a file is missing or cannot be used, (Usage) on a number out of
// range.
class Board {
 public:
  explicit Board(std::filesystem::path directory) : directory_(std::move(directory)) {}

  const std::filesystem::path& directory() const { return directory_; }
  std::string socketPath() const { return (directory_ / "run/apipc.sock").string(); }
  // Whether a daemon has ever switched this board on.
  bool hasHardware() const;
  // Whether it is on: its FPGA holds what was written to it.
  bool isOn() const;
  // Whether a daemon has the board now.
  bool isTaken() const;
  // Switches a board off that nobody has: the FPGA loses what it holds.
  void switchOff() const;

  // FPGA bus (address up to 256 MiB) and parameter flash (up to 32 MiB).
  Bytes fpga(uint32_t address, std::size_t length) const;
  void setFpga(uint32_t address, const Bytes& bytes) const;
  Bytes flash(uint32_t address, std::size_t length) const;
  void setFlash(uint32_t address, const Bytes& bytes) const;

  // Links of output ports 0..15, in every place where the hardware shows them.
  bool link(unsigned port, Medium medium) const;
  void setLink(unsigned port, Medium medium, bool up) const;

  uint32_t fault(unsigned index) const;
  void setFault(unsigned index, uint32_t count) const;
  // The same with what must pass first and which addresses count; ranges exist for the first kFaultRanges
  // kinds.
  FaultPlan faultPlan(unsigned index) const;
  void setFaultPlan(unsigned index, const FaultPlan& plan) const;
  PowerCut powerCut() const;
  void setPowerCut(const PowerCut& cut) const;
  // Lux of a sensor in the order of board.conf; 0xFFFFFFFF: it does not answer.
  uint32_t sensor(unsigned index) const;
  void setSensor(unsigned index, uint32_t lux) const;
  // Seconds added to this machine's clock to give the board's.
  int64_t clockOffset() const;
  void setClockOffset(int64_t seconds) const;

  // What the daemon did to the board since its start, a line a call; empty without a daemon's journal.
  std::vector<std::string> journal() const;

 private:
  Bytes get(const char* file, uint64_t offset, std::size_t length) const;
  void put(const char* file, uint64_t offset, const Bytes& bytes) const;
  uint32_t word(uint64_t offset) const;  // of the control page
  void setWord(uint64_t offset, uint32_t value) const;

  std::filesystem::path directory_;
};

}  // namespace peer
