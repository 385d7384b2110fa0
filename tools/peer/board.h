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

// All operations throw Error (Board) when a file is missing or cannot be used, (Usage) on a number out of
// range.
class Board {
 public:
  explicit Board(std::filesystem::path directory) : directory_(std::move(directory)) {}

  const std::filesystem::path& directory() const { return directory_; }
  std::string socketPath() const { return (directory_ / "run/apipc.sock").string(); }
  // Whether a daemon has switched this board on.
  bool hasHardware() const;

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
  // Lux of a sensor in the order of board.conf; 0xFFFFFFFF: it does not answer.
  void setSensor(unsigned index, uint32_t lux) const;
  // Seconds added to this machine's clock to give the board's.
  int64_t clockOffset() const;
  void setClockOffset(int64_t seconds) const;

  // What the daemon did to the board since its start, a line a call; empty without a daemon's journal.
  std::vector<std::string> journal() const;

 private:
  Bytes get(const char* file, uint64_t offset, std::size_t length) const;
  void put(const char* file, uint64_t offset, const Bytes& bytes) const;

  std::filesystem::path directory_;
};

}  // namespace peer
