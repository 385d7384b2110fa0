// Direct access to the FPGA bus, for tests and service.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_TestPrinfRegister : public RegisterSpace<Addr_TestPrinfRegister> {
 public:
  static constexpr char kName[] = "Addr_TestPrinfRegister";
  static constexpr uint32_t kBase = reg::kTestPrint;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int Ssh_cmd(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int validDataBegin);
  static int REG_TestPrintfInfomation(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadTestPrintfInfomation(IMD_proto3rd* msgIMD);
  static int WriteTestPrintfInfomation(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
