// Written EDIDs and the configuration files of the receiving cards.
#include "maps/inputsource.h"
#include "mcuctrace.h"
#include "process/inputSource.h"
#include "process/rvconfigspace.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

int groupOfCurrentSource() {
  const uint8_t source = Data_Global::getInstance()->SendParameterReg[input::kSourceAt];
  PARLEND_TRACE(kInfo) << " SendParameterReg[0x01A5] = 0x" << CTrace::hex << int{source};
  return input::groupOf(source).value_or(0);
}

void storeEdid(const PenetrateInfo& info) {
  if (info.length > kEdidBytes) {
    PARLEND_TRACE(kError) << "=== DoWriteEdidInfo ===data length > 100! length = " << info.length
                          << " return. ";
    return;
  }
  if (info.length != kEdidBlock && info.length != kEdidBytes) return;
  InputSource::getInstance()->EDIDCommStorage(groupOfCurrentSource(), info.data);
}

}  // namespace

int Tprocess::Sprocess_DoDoEDIDSpace(int lenth, char* data) {
  return handlePenetrate<DoEDIDSpaceKey>(lenth, data, &storeEdid);
}

int Tprocess::Sprocess_RVConfigFileSpace(int lenth, char* data) {
  return handlePenetrate<RVConfigFileSpaceKey>(lenth, data, [](const PenetrateInfo& info) {
    RvConfigSpace::getInstance()->write(info.Register, info.data);
  });
}

}  // namespace ORVE_MCUC
