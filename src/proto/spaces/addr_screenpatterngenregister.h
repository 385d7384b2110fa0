// Registers of the test-pattern generator.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_ScreenPatternGenregister : public RegisterSpace<Addr_ScreenPatternGenregister> {
 public:
  static constexpr char kName[] = "Addr_ScreenPatternGenregister";
  static constexpr uint32_t kBase = reg::kScreenPatternGen;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoScreenPatternGen(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadScreenPatternGenInfo(IMD_proto3rd* msgIMD);
  static int WriteScreenPatternGenInfo(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
