// What a write to the configuration-file space does: a copy in flash, the files that a header announced, and
// their playback. On the work thread.
#pragma once

#include <cstdint>
#include <span>

#include "calc/rvconfig.h"

namespace ORVE_MCUC {

class RvConfigSpace {
 public:
  static RvConfigSpace* getInstance();
  static void deleteInstance();

  void write(uint32_t registerAddress, std::span<const uint8_t> data);

 private:
  void storeFile(uint32_t registerAddress, std::span<const uint8_t> data);
  void takeHeader(std::span<const uint8_t> header);
  void storeBody(uint32_t registerAddress, std::span<const uint8_t> data);

  // Of this process only: after a restart bodies wait for the next header.
  _RvFileHeadPara_t WriteRvFilePara;
};

}  // namespace ORVE_MCUC
