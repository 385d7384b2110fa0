#include "proto/spaces/addr_edidspaceregister.h"

#include "maps/inputsource.h"
#include "process/inputSource.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{offsetRow(reg::kEdid, "edid space info", "edid space info register", {0, 2048},
                                     &Addr_EDIDSpaceRegister::DoEDIDSpace),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

constexpr uint16_t kDetectLength = 1;

// The group of the input that the screen shows.
int currentInput() {
  const uint8_t source = Data_Global::getInstance()->SendParameterReg[input::kSourceAt];
  const auto group = input::groupOf(source);
  if (!group) PARLEND_TRACE(kInfo) << "Read Input source ID is" << int{source};
  return group.value_or(0);
}

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_EDIDSpaceRegister::cmd_tblOffset = kRows;

int Addr_EDIDSpaceRegister::DoEDIDSpace(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromEDIDSpace, &WriteToEDIDSpace);
}

int Addr_EDIDSpaceRegister::ReadFromEDIDSpace(IMD_proto3rd* msgIMD) {
  if (msgIMD->proto.m_uiRegisterUnitAddress != reg::kEdid) return kBeyondImage;
  const uint16_t length = msgIMD->proto.m_usValidDataLength;
  if (length == kDetectLength) {
    InputSource::getInstance()->InputBoardInit();
    return kDone;
  }
  if (length != kEdidBlock && length != kEdidBytes) return kBeyondImage;
  std::array<uint8_t, kEdidBytes> edid{};
  InputSource::getInstance()->ReadEDIDInfo(currentInput(), edid);
  replyWith(*msgIMD, std::span<const uint8_t>(edid).first(length));
  return kDone;
}

int Addr_EDIDSpaceRegister::WriteToEDIDSpace(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, DoEDIDSpaceKey, "DoEDIDSpaceKey");
}

}  // namespace ORVE_MCUC
