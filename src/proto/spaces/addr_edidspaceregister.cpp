// The EDID of the current video input; a one-byte read looks for the input boards anew.
#include "maps/inputsource.h"
#include "process/inputSource.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kDetectLength = 1;

// The group of the input that the screen shows.
int currentInput() {
  const uint8_t source = Data_Global::getInstance()->SendParameterReg[input::kSourceAt];
  const auto group = input::groupOf(source);
  if (!group) PARLEND_TRACE(kInfo) << "Read Input source ID is" << int{source};
  return group.value_or(0);
}

int ReadFromEDIDSpace(IMD_proto3rd& request) {
  if (request.proto.m_uiRegisterUnitAddress != reg::kEdid) return kBeyondImage;
  const uint16_t length = request.proto.m_usValidDataLength;
  if (length == kDetectLength) {
    InputSource::getInstance()->InputBoardInit();
    return kDone;
  }
  if (length != kEdidBlock && length != kEdidBytes) return kBeyondImage;
  std::array<uint8_t, kEdidBytes> edid{};
  InputSource::getInstance()->ReadEDIDInfo(currentInput(), edid);
  replyWith(request, std::span<const uint8_t>(edid).first(length));
  return kDone;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kEdid>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kEdid>({.read = &ReadFromEDIDSpace, .write = &queueWrite<DoEDIDSpaceKey>});
  return kSpace;
}

}  // namespace ORVE_MCUC
