// The sending card's own registers: hardware info, features, factory reset, mapping command.
#include "maps/cardmap.h"
#include "mcuctrace.h"
#include "process/basicpublicfunc.h"
#include "process/featurewrite.h"
#include "process/tprocess.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {

int Tprocess::Sprocess_BasicData(int lenth, char* data) {
  int result = 0;
  handlePenetrate<HwBasicinfoKey>(lenth, data, [&](const PenetrateInfo& info) {
    BasicPublicFunc::getInstance()->SetHwBasicinfo(info.Register, info.data);
    result = 1;
  });
  return result;
}

int Tprocess::Sprocess_DoFeatureInfo(int lenth, char* data) {
  return handlePenetrate<DoFeatureInfoKey>(
      lenth, data, [](const PenetrateInfo& info) { DoWriteFeatureInfo(info.Register, info.data); });
}

// The reset itself runs on the flag and status thread. A restore, which ends a reset, is not under way while
// it is requested.
int Tprocess::Sprocess_ReturnFactorySet(int lenth, char* data) {
  return handleRecord<ReturnFactorySetKey>(lenth, data, 1, [](std::span<const uint8_t> bytes) {
    PARLEND_TRACE(kInfo) << "============================ Begin Sprocess_ReturnFactorySet Sleep "
                            "2second===========================";
    Data_Global& store = *Data_Global::getInstance();
    CMutexGuardT<CMutexThreadRecursive> guard(store.m_mutex);
    store.request(bytes.front());
  });
}

int Tprocess::Sprocess_doMappingForSender(int lenth, char* data) {
  return handleCommand<SendCardMappingKey>([&] {
    constexpr uint8_t kAllPorts = 0xFF;
    constexpr uint16_t kAllCards = 0xFFFF;
    const bool named = lenth > 0 && data != nullptr && (data[0] == 5 || data[0] == 1);
    const uint8_t value = named ? 5 : 0xFF;
    Addr_HardWareBrightnessAdjust::NewSendReceiveCardPara(card::kMapping, kAllPorts, kAllCards, {&value, 1});
  });
}

}  // namespace ORVE_MCUC
