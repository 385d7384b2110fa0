// Rows of the router's table and of every register space's offset table, and the access check they share.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string_view>

#include "stub/mcucmessagestruct.h"

namespace ORVE_MCUC {

// Permitted length of a request's data in bytes, both ends included.
struct Fcmd_len {
  int32_t cmdLenMin = 1;
  int32_t cmdLenMax = 512;
};

// What a check function is given: the row's access types and limits.
struct Fcheck_func {
  int32_t cmdType = 0;
  Fcmd_len cmdLen;
};

// Device binding of a row; all zero in this system.
struct Fdev_func_tbl {
  uint32_t addr = 0;
  int32_t dev_type = 0;
  int32_t type = 0;
};

inline constexpr int32_t kMayRead = 0x01;
inline constexpr int32_t kMayWrite = 0x10;
inline constexpr int32_t kReadWrite = kMayRead | kMayWrite;

struct Fshl_cmd {
  uint32_t RegisterAddr = 0;      // key of the row
  const char* cmd_str = nullptr;  // short name; null ends a table
  const char* cmd_exp = nullptr;  // description for the diagnostics
  int32_t cmdType = 0;            // kMayRead, kMayWrite
  Fcmd_len cmdLen;
  Fdev_func_tbl dev_tbl;
  ThirdProtoMCUCMsg* paras = nullptr;
  int (*called_fun)(IMD_proto3rd* msgIMD, Fshl_cmd* tbl, int validDataBegin) = nullptr;
  int (*print_fun)(IMD_proto3rd* msgIMD) = nullptr;
  int (*check_fun)(Fcheck_func* check, IMD_proto3rd* msgIMD) = nullptr;
};

using RowHandler = int (*)(IMD_proto3rd*, Fshl_cmd*, int);
using RowPrinter = int (*)(IMD_proto3rd*);

struct Fshl_cmdMap {
  uint32_t NO = 0;  // position of the row in its table
  Fshl_cmd* cmd = nullptr;
};
using MAP_INT_Fshl_cmd = std::map<uint32_t, Fshl_cmdMap>;

// Maps the rows of a table, up to the row without a name, by their keys.
void mapRows(Fshl_cmd* rows, MAP_INT_Fshl_cmd& map);

// Whether a request's length and access type are permitted: 0, kBadLength or kBadAccess. The length is looked
// at first.
int Ssh_checkFun(Fcheck_func* check, IMD_proto3rd* msgIMD);

// A row of a space's offset table.
constexpr Fshl_cmd offsetRow(uint32_t key, const char* name, const char* text, Fcmd_len limits,
                             RowHandler handler) {
  return {key, name, text, kReadWrite, limits, {}, nullptr, handler, nullptr, &Ssh_checkFun};
}

// For a static_assert under each table: keys unique, limits in order, the last row and only it empty.
template <std::size_t N>
constexpr bool rowsAreSound(const std::array<Fshl_cmd, N>& rows) {
  for (std::size_t i = 0; i + 1 < N; ++i) {
    if (rows[i].cmd_str == nullptr || rows[i].cmdLen.cmdLenMin > rows[i].cmdLen.cmdLenMax) return false;
    for (std::size_t k = 0; k < i; ++k) {
      if (rows[k].RegisterAddr == rows[i].RegisterAddr) return false;
    }
  }
  return rows[N - 1].cmd_str == nullptr;
}

}  // namespace ORVE_MCUC
