// The EDID of the current video input; a one-byte read looks for the input boards anew.
#include "process/inputSource.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

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

int ReadFromEDIDSpace(IMD_proto3rd& request) {
  if (request.proto.m_uiRegisterUnitAddress != reg::kEdid) return kBeyondImage;
  const uint16_t length = request.proto.m_usValidDataLength;
  if (length == kDetectLength) {
    InputSource::getInstance()->InputBoardInit();
    return kDone;
  }
  if (length != kBlockLength && length != kEdidSize) return kBeyondImage;
  std::array<uint8_t, kEdidSize> edid{};
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
