// Configuration files of the receiving cards: a window into the parameter flash.
#pragma once

#include "proto/spaces/registerspace.h"

namespace ORVE_MCUC {

class Addr_RVConfigFileSpace : public RegisterSpace<Addr_RVConfigFileSpace> {
 public:
  static constexpr char kName[] = "Addr_RVConfigFileSpace";
  static constexpr uint32_t kBase = reg::kRVConfigFile;
  static constexpr uint32_t kKeyMask = reg::kWideMask;
  static std::array<Fshl_cmd, 2> cmd_tblOffset;

  static int DoRVConfigFileSpace(IMD_proto3rd* msgIMD, Fshl_cmd*, int);
  static int ReadFromRVConfigFileSpace(IMD_proto3rd* msgIMD);
  static int WriteToRVConfigFileSpace(IMD_proto3rd* msgIMD);
};

}  // namespace ORVE_MCUC
