// The text of a board.conf.
#include <cstdlib>
#include <string>

#include "board_conf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  simboard::BoardConf conf;
  std::string error;
  const bool good = simboard::parseConf(std::string(data, data + size), conf, error);
  if (good != error.empty()) std::abort();
  return 0;
}
