#include "proto/spaces/addr_rvconfigfilespace.h"

#include "maps/flashmap.h"
#include "proto/store/flashread.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{
    offsetRow(reg::kRVConfigFile, "RVConfig File Space info", "RVConfig File Space info register", {0, 2048},
              &Addr_RVConfigFileSpace::DoRVConfigFileSpace),
    Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_RVConfigFileSpace::cmd_tblOffset = kRows;

int Addr_RVConfigFileSpace::DoRVConfigFileSpace(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromRVConfigFileSpace, &WriteToRVConfigFileSpace);
}

int Addr_RVConfigFileSpace::ReadFromRVConfigFileSpace(IMD_proto3rd* msgIMD) {
  const uint32_t address = msgIMD->proto.m_uiRegisterUnitAddress;
  if (replyFromFlash(*msgIMD, flash::ofConfigFile(address)) == 0) return kDone;
  const char* file = (address & reg::kDeviceNameFileBit) != 0 ? "DevNameFile" : "RVConfigFile";
  PARLEND_TRACE(kError) << "=== ReadRVConfigFileSpace ===Read from flash failed when reading " << file
                        << " ! ";
  return kRefused;
}

int Addr_RVConfigFileSpace::WriteToRVConfigFileSpace(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, RVConfigFileSpaceKey, "RVConfigFileSpaceKey");
}

}  // namespace ORVE_MCUC
