// Program space of the sending card: reads are zeros, writes are refused.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_CardProgmaSpaceRegister : public RegisterSpace<Addr_CardProgmaSpaceRegister> {
 public:
  static constexpr char kName[] = "Addr_CardProgmaSpaceRegister";
  static constexpr uint32_t kBase = reg::kCardProgram;
  static constexpr uint32_t kKeyMask = reg::kOffsetMask;
  static constexpr int kUnknownKeyResult = kDone;
  static std::array<Fshl_cmd, 3> cmd_tblOffset;

  static int ProcessCardProgmaSpace(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadCardProgmaSpace(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
