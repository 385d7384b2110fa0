// The simulated board as its rooms see it: where things lie, which calls are to fail, what is plugged in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace simboard {

struct BoardConf;

// Absolute path of something in the board directory.
std::string path(std::string_view relative);
// Where a device path lies: below the board directory, whatever ".." it contains.
std::string devicePath(std::string_view path);

// Kinds of calls that control.bin can make fail, in the order of its counters.
enum class Fault {
  FpgaWrite,
  FpgaRead,
  FlashWrite,
  FlashRead,
  FactoryWrite,
  CardWrite,
  CardRead,
  MessageSend,
  EnvOpen,
  EnvSet,
  DateText,
  TimeText,
  EdidRead,
  EdidLoad,
  NetCall,
  MessageQueue,
};
// True when this call is to fail, as all do without power; counts it down. The first five kinds name what the
// call touches.
bool takeFault(Fault kind);
bool takeFault(Fault kind, uint32_t address, uint32_t length);

unsigned char cardBit();
const BoardConf& conf();

// What control.bin holds of the sensor at that place in board.conf.
uint32_t sensorLux(std::size_t index);

// Stores a value in the environment without a journal line of its own. 0: stored.
int storeEnvironment(const std::string& key, const std::string& value);

// Leaves the board directory, for a test that goes on with another one. Calls of threads that go on fail.
void stop();

}  // namespace simboard
