// The basic hardware page, with model ID and serial number from the environment store.
#include "maps/flashmap.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kModelIdAt = 2;
constexpr uint32_t kSerialNumberAt = 22;

bool insidePage(const IMD_proto3rd& request, const char* operation) {
  const uint32_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint32_t length = request.proto.m_usValidDataLength;
  if (offset + length <= flash::kBasicHardwareSize) return true;
  PARLEND_TRACE(kError) << "=== " << operation << " ===Invalid addr+len, return! address = " << CTrace::hex
                        << offset << " len = " << length;
  return false;
}

constexpr bool covers(uint32_t offset, uint32_t length, uint32_t from, uint32_t count) {
  return offset <= from && from + count <= offset + length;
}

int ReadHwBasicInfomation(IMD_proto3rd& request) {
  if (!insidePage(request, "ReadHwBasicInfomation")) return kBeyondImage;
  const uint32_t offset = request.proto.m_uiRegisterUnitAddress & reg::kOffsetMask;
  const uint32_t length = request.proto.m_usValidDataLength;
  std::array<uint8_t, flash::kBasicHardwareSize> page{};
  const auto part = std::span(page).subspan(offset, length);
  const int ret = readFlash(flash::kBasicHardwarePage + offset, part);
  Data_Global& data = *Data_Global::getInstance();
  if (covers(offset, length, kModelIdAt, 2)) data.GetEnvModelIDPara(page.data() + kModelIdAt);
  if (covers(offset, length, kSerialNumberAt, 8)) data.GetEnvSNPara(page.data() + kSerialNumberAt);
  replyWith(request, part);
  return ret == 0 ? kDone : kFailed;
}

int WriteHwBasicInfomation(IMD_proto3rd& request) {
  if (!insidePage(request, "WriteHwBasicInfomation")) return kBeyondImage;
  return queueWrite<HwBasicinfoKey>(request);
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kHwBasicInfo>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kHwBasicInfo>({.read = &ReadHwBasicInfomation,
                                                                            .write = &WriteHwBasicInfomation,
                                                                            .checks = false,
                                                                            .unknownCode = kDone});
  return kSpace;
}

}  // namespace ORVE_MCUC
