// The dispatcher of deferred work: looks an item's key up in the key table and calls its handler. Items come
// from the work thread, one at a time.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>

#include "maps/workkeys.h"
#include "mcucdatablock.h"
#include "mcucmutex.h"
#include "stub/mcuprocessdatablock.h"

namespace ORVE_MCUC {

using WorkHandler = int (*)(int lenth, char* data);

struct Fprocess_cmd {
  uint16_t largelab = 0;
  uint16_t smalllab = 0;
  enum_Process_Key_Table process_key = HwBasicinfoKey;
  const char* cmd_str = nullptr;  // null ends the table
  WorkHandler called_fun = nullptr;
};

struct Fprocess_cmdMap {
  uint32_t NO = 0;  // position of the row in the table
  const Fprocess_cmd* cmd = nullptr;
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

  // The link and redundancy monitor: each check reads its FPGA registers and pushes them to LSD when they are
  // not what was read last. One step a tick, on the flag and status thread.
  void SendRedundtoLSD();
  void SendNetLinktoLSD();
  void SendFiberLinktoLSD();
  void SendFiberBelowLinkStatustoLSD();
  void SendFiberRedundtoLSD();
  void SendFiberToNetStatustoLSD();
  void SendFiberCopyStatustoLSD();
  void SendGenLockLinktoLSD();
  // Measures the receiving cards again once a link change has settled, and pushes their size.
  void SendRecvCardParaToLsdByLinkChange();

  // Pushes of one group of ports, from a fresh read; when that fails, what a check has read a moment ago.
  void SendRedundtoLSD1_4(std::span<const uint8_t> checked = {});
  void SendRedundtoLSD5_8(std::span<const uint8_t> checked = {});
  void SendRedundtoLSD9_16(std::span<const uint8_t> checked = {});
  void SendNetLinktoLSD1_4(std::span<const uint8_t> checked = {});
  void SendNetLinktoLSD5_8(std::span<const uint8_t> checked = {});
  void SendNetLinktoLSD9_16(std::span<const uint8_t> checked = {});

  // The factory reset's step of a tick: a requested one is carried out, a finished one ends in the reboot. On
  // the flag and status thread.
  void RebootAfterRF();

  RelaxedValue<bool> apipc_connect_status;  // LSD's connection has been seen
  // Asks for the connection step once more. Whoever asks may stand below the dispatcher.
  static inline constinit RelaxedValue<bool> OptToNetEnableOnce;

 private:
  Tprocess_ctl() = default;

  static const std::array<Fprocess_cmd, 200> process_root;  // rows, then empty ones
  std::map<uint32_t, Fprocess_cmdMap> m_mapProcess;
  CMutexThreadRecursive m_mutex;
};

}  // namespace ORVE_MCUC
