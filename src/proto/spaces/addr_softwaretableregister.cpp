// Software tables: two windows into the parameter flash, and a trigger for VSP.
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

// What VSP is sent, and the requester is answered, for the trigger.
constexpr uint8_t kTriggerAnswer[] = {0xC8};

int ReadFromSoftwareTable(IMD_proto3rd& request) {
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  if (address == reg::kVspTrigger && request.proto.m_usValidDataLength == 1) {
    Data_Global::getInstance()->SendC8toVsp();
    replyWith(request, kTriggerAnswer);
    PARLEND_TRACE(kInfo) << "Finish Sending 0xC8 to VSP. ";
    return kDone;
  }
  const int ret = replyFromFlash(request, flash::ofSoftwareTable(address),
                                 {"ReadFromSoftwareTable", "Read Bytes From Flash Failed. DriverRet = "});
  return ret == 0 ? kDone : kFailed;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kSoftwareTable>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kSoftwareTable>({.read = &ReadFromSoftwareTable,
                                          .write = &queueWrite<DoSoftwareTableKey>,
                                          .entered = &logEntryAndRows});
  return kSpace;
}

}  // namespace ORVE_MCUC
