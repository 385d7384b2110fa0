#include "proto/spaces/addr_edidspaceregister.h"

#include "process/inputSource.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{offsetRow(reg::kEdid, "edid space info", "edid space info register", {0, 2048},
                                     &Addr_EDIDSpaceRegister::DoEDIDSpace),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

constexpr std::size_t kInputSourceAt = 421;  // of the feature image
constexpr uint16_t kDetectLength = 1;
constexpr uint16_t kBlockLength = 128;

// The group of the input that the screen shows.
int currentInput() {
  const uint8_t source = Data_Global::getInstance()->SendParameterReg[kInputSourceAt];
  switch (source) {
    case 97:
      return 0;
    case 98:
      return 1;
    case 80:
      return 2;
    default:
      PARLEND_TRACE(kInfo) << "Read Input source ID is" << source;
      return 0;
  }
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
  if (length != kBlockLength && length != kEdidSize) return kBeyondImage;
  std::array<uint8_t, kEdidSize> edid{};
  InputSource::getInstance()->ReadEDIDInfo(currentInput(), edid);
  replyWith(*msgIMD, std::span<const uint8_t>(edid).first(length));
  return kDone;
}

int Addr_EDIDSpaceRegister::WriteToEDIDSpace(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, DoEDIDSpaceKey, "DoEDIDSpaceKey");
}

}  // namespace ORVE_MCUC
