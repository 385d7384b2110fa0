// The dispatcher of deferred work: looks an item's key up in the key table and calls its handler. Items come
// from the work thread, one at a time.
#pragma once

#include <array>
#include <cstdint>
#include <map>

#include "mcucmutex.h"
#include "proto/processkeys.h"
#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {

struct Fprocess_cmd {
  uint16_t largelab = 0;
  uint16_t smalllab = 0;
  enum_Process_Key_Table process_key = HwBasicinfoKey;
  const char* cmd_str = nullptr;  // null ends the table
  int (*called_fun)(int lenth, char* data) = nullptr;
};

struct Fprocess_cmdMap {
  uint32_t NO = 0;  // position of the row in the table
  Fprocess_cmd* cmd = nullptr;
};

class Tprocess_ctl {
 public:
  static Tprocess_ctl* getInstance();
  ~Tprocess_ctl();
  Tprocess_ctl(const Tprocess_ctl&) = delete;
  Tprocess_ctl& operator=(const Tprocess_ctl&) = delete;

  // Fills the lookup map; once, before the work thread runs. Returns 1.
  int initialize();
  // Calls the handler of the item's key. A key that is not in the table is ignored.
  void onProcessDealwith(MCUProcessDataBlock* block);

 private:
  Tprocess_ctl() = default;

  static std::array<Fprocess_cmd, 200> process_root;
  std::map<uint32_t, Fprocess_cmdMap> m_mapProcess;
  CMutexThreadRecursive m_mutex;
};

}  // namespace ORVE_MCUC
