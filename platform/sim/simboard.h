// The simulated board as its rooms see it: where things lie, which calls are to fail, what the journal says.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace simboard {

// Absolute path of something in the board directory.
std::string path(std::string_view relative);

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
  MessageQueue
};
// True when this call is to fail; counts it down.
bool takeFault(Fault kind);

unsigned char cardBit();
// Values of board.conf.
const std::map<std::string, std::string>& conf();

// Appends one line, stamped, in one write. Nothing while the journal is off.
void journal(const std::string& line);
std::string hexWord(uint32_t value);
std::string hexBytes(const unsigned char* bytes, size_t count);

void powerOn();
void reboot();

}  // namespace simboard
