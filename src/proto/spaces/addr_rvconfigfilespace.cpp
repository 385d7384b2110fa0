// Configuration files of the receiving cards: a window into the parameter flash.
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"

namespace ORVE_MCUC {
namespace {

int ReadFromRVConfigFileSpace(IMD_proto3rd& request) {
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  const char* failed = (address & reg::kDeviceNameFileBit) != 0
                           ? "Read from flash failed when reading DevNameFile ! "
                           : "Read from flash failed when reading RVConfigFile ! ";
  const int ret = replyFromFlash(request, flash::ofConfigFile(address), {"ReadRVConfigFileSpace", failed});
  return ret == 0 ? kDone : kRefused;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kRVConfigFile>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kRVConfigFile>(
      {.read = &ReadFromRVConfigFileSpace, .write = &queueWrite<RVConfigFileSpaceKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
