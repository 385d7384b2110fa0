// Software tables: two windows into the parameter flash, and a trigger for VSP.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_SoftwareTableRegister : public RegisterSpace<Addr_SoftwareTableRegister> {
 public:
  static constexpr char kName[] = "Addr_SoftwareTableRegister";
  static constexpr uint32_t kBase = reg::kSoftwareTable;
  static constexpr bool kLogsEntry = true;
  static constexpr bool kLogsMap = true;
  static std::array<Fshl_cmd, 3> cmd_tblOffset;

  static int DoSoftwareTable(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromSoftwareTable(IMD_proto3rd* msgIMD);
  static int WriteToSoftwareTable(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
