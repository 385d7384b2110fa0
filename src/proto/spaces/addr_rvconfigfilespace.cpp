// Configuration files of the receiving cards: a window into the parameter flash.
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/flashread.h"

namespace ORVE_MCUC {
namespace {

int ReadFromRVConfigFileSpace(IMD_proto3rd& request) {
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  if (replyFromFlash(request, flash::ofConfigFile(address)) == 0) return kDone;
  const char* file = (address & reg::kDeviceNameFileBit) != 0 ? "DevNameFile" : "RVConfigFile";
  PARLEND_TRACE(kError) << "=== ReadRVConfigFileSpace ===Read from flash failed when reading " << file
                        << " ! ";
  return kRefused;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kRVConfigFile>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kRVConfigFile>(
      {.read = &ReadFromRVConfigFileSpace, .write = &queueWrite<RVConfigFileSpaceKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
