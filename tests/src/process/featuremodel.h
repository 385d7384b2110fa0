// The feature parameters beside the daemon: image, FPGA, flash, and what a write does to the board and to
// LSD, in its order. Slow and plain on purpose.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class FeatureModel {
 public:
  using Bytes = std::vector<uint8_t>;

  std::array<uint8_t, 512> image{};
  std::array<uint8_t, 512> fpga{};
  std::map<uint32_t, uint8_t>
      flash;  // what was written; the generator's and the 3D byte and the counter are set
  Bytes screen = Bytes(6);
  uint8_t serialTimeout = 40;
  std::array<uint8_t, 4> below{};  // links below the fibers

  std::vector<std::string> journal;  // times left out; a save of the brightness file is one line
  std::vector<std::string> pushes;   // "1f0 HEX"

  void write(uint32_t n, const Bytes& data);
  /** What a peer is told; clock is the time now. */
  Bytes read(uint32_t n, uint32_t length, const Bytes& clock);
  /** The step of a write that is done before it is queued. */
  void askLsd(uint32_t n, const Bytes& data);

 private:
  uint32_t word(uint32_t at) const { return image[at] | static_cast<uint32_t>(image[at + 1]) << 8; }
  void putWord(uint32_t at, uint32_t value);
  void put(uint32_t at, uint32_t value, int bytes);
  void toFpga(uint32_t at, const Bytes& data);
  void wordToFpga(uint32_t at, uint32_t value);
  void toFlash(uint32_t address, const Bytes& data);
  void shell(const std::string& command) { journal.push_back("shell " + command); }
  void push(uint32_t n, const Bytes& data);
  void lookForZero(int point, uint32_t n, const std::string& text);
  void storeSize(uint32_t width, uint32_t height);
  void offsets(uint32_t n, const Bytes& data);
  void axis(uint32_t n, int64_t offset, int number);
  void leaveMode(uint32_t n, bool bypass);
  void clockTestRole(uint32_t n, const Bytes& data);
  void size(uint32_t n, std::size_t length);
};
