// Configuration of the screen: the record of a smart configuration, and the blocks of an advanced one. A
// window into the parameter flash whose writes start the calculations.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_ShortcutConfigScreenRegister : public RegisterSpace<Addr_ShortcutConfigScreenRegister> {
 public:
  static constexpr char kName[] = "Addr_ShortcutConfigScreenRegister";
  static constexpr uint32_t kBase = reg::kShortcutConfigScreen;
  static constexpr bool kLogsEntry = true;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  // Gives every port of the advanced configuration one row and one column.
  static void prepare();

  static int DoShortcutConfigScreen(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromShortcutConfigScreen(IMD_proto3rd* msgIMD);
  static int WriteToShortcutConfigScreen(IMD_proto3rd* msgIMD);
  // Stores one field of the advanced configuration, for ports 0..9. Returns 0.
  static int ParseAdvCfgScreen(uint32_t address, std::span<const uint8_t> data);

 private:
  static int writeRecord(IMD_proto3rd& request);
  static int submitSmart(IMD_proto3rd& request);

  static uint8_t m_cfgScreenFlag;
  static uint8_t m_advCfgSubmit;  // the write at hand submits an advanced configuration
};

}  // namespace ORVE_MCUC
