// Rows of the router's table and of every register space's offset table, and the access check they share.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>

#include "maps/spaces.h"
#include "stub/mcucmessagestruct.h"

namespace ORVE_MCUC {

// What a check function is given: the row's access types and limits.
struct Fcheck_func {
  int32_t cmdType = 0;
  Fcmd_len cmdLen{};
};

// Device binding of a row; all zero in this system.
struct Fdev_func_tbl {
  uint32_t addr = 0;
  int32_t dev_type = 0;
  int32_t type = 0;
};

struct Fshl_cmd;
using RowHandler = int (*)(IMD_proto3rd* msgIMD, const Fshl_cmd* tbl, int validDataBegin);
using RowPrinter = int (*)(IMD_proto3rd* msgIMD);
using RowCheck = int (*)(Fcheck_func* check, IMD_proto3rd* msgIMD);

struct Fshl_cmd {
  uint32_t RegisterAddr = 0;      // key of the row
  const char* cmd_str = nullptr;  // short name; null ends a table
  const char* cmd_exp = nullptr;  // description for the diagnostics
  int32_t cmdType = 0;            // kMayRead, kMayWrite
  Fcmd_len cmdLen{};
  Fdev_func_tbl dev_tbl{};
  ThirdProtoMCUCMsg* paras = nullptr;
  RowHandler called_fun = nullptr;
  RowPrinter print_fun = nullptr;
  RowCheck check_fun = nullptr;
};

struct Fshl_cmdMap {
  uint32_t NO = 0;  // position of the row in its table
  const Fshl_cmd* cmd = nullptr;
};
using MAP_INT_Fshl_cmd = std::map<uint32_t, Fshl_cmdMap>;

// Whether a request's length and access type are permitted: 0, kBadLength or kBadAccess. The length is looked
// at first.
int Ssh_checkFun(Fcheck_func* check, IMD_proto3rd* msgIMD);

}  // namespace ORVE_MCUC
