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
// True when this call is to fail; counts it down.
bool takeFault(Fault kind);

unsigned char cardBit();
const BoardConf& conf();

// What control.bin holds of the sensor at that place in board.conf.
uint32_t sensorLux(std::size_t index);

// Stores a value in the environment without a journal line of its own. 0: stored.
int storeEnvironment(const std::string& key, const std::string& value);

// Switches the board off and on and starts the daemon's program again; does not return.
[[noreturn]] void reboot();

// Leaves the board directory, for a test that goes on with another one. No other call may be running.
void stop();

}  // namespace simboard
