// board.conf: what is plugged into the board.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace simboard {

enum class JournalLevel { Off, Writes, All };

struct Sensor {
  uint8_t port;
  uint16_t board;
  uint8_t number;
  uint32_t lux;
};

struct Input {
  int id;
  int type;  // as the input library names its types
};

struct BoardConf {
  uint8_t cardBit = 1;
  bool fpgaAutoload = true;
  bool fpgaUp = true;
  uint16_t copperPorts = 0x000F;  // bit p: port p
  uint16_t fiber1Ports = 0;
  uint16_t fiber2Ports = 0;
  uint8_t fiberModule = 0;
  uint16_t cardsPerPort = 16;
  uint16_t cardWidth = 128;
  uint16_t cardHeight = 128;
  uint8_t cardBrightness = 0xFF;
  std::vector<Sensor> sensors;
  std::vector<Input> inputs;
  JournalLevel journal = JournalLevel::Writes;
};

// The text of a board.conf that says the defaults.
extern const char kDefaultConf[];

// Parses a board.conf. On a bad line writes "board.conf:LINE: ..." into error.
bool parseConf(const std::string& text, BoardConf& conf, std::string& error);

}  // namespace simboard
