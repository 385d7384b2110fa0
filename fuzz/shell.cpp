// Command lines of the device, as the simulated board carries them out. What they print, and that they stay
// in the board directory.
#include <array>
#include <string>

#include "platform/board.h"
#include "testboard.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static TestBoard board;
  board.start();
  const std::string line(data, data + size);
  board_shell(line.c_str());
  std::array<char, 64> printed{};
  board_shell_line(line.c_str(), printed.data(), printed.size());
  if (!board.hasPower()) board.powerOn();
  return 0;
}
