// Screen information: the screen parameter table in memory, with the size of the receiving cards in it.
#include <algorithm>

#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

int ReadFromScreenInfoEcho(IMD_proto3rd& request) {
  Data_Global& data = *Data_Global::getInstance();
  data.refreshCardSizeInScreenPara();
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  const std::size_t position = address & 0xFF;
  const std::size_t length =
      std::min<std::size_t>(request.proto.m_usValidDataLength, data.ScreenParaReg.size());
  PARLEND_TRACE(kInfo) << "=======realAddress = 0x" << CTrace::hex << address
                       << ", OpValidLength = " << request.proto.m_usValidDataLength;
  // A read past the end of the table is filled up with zeros.
  const std::size_t inTable = std::min(length, data.ScreenParaReg.size() - position);
  auto& reply = request.proto.m_data;
  reply.assign(length, 0);
  return data.ScreenParaReg.copyTo(std::span(reply).first(inTable), position) ? kDone : kFailed;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kScreenInfoEcho>) {
  static constexpr RegisterSpace kSpace =
      registerSpace<reg::kScreenInfoEcho>({.read = &ReadFromScreenInfoEcho,
                                           .write = &queueWrite<DoScreenInfoEchoKey>,
                                           .entered = &logEntryAndRows});
  return kSpace;
}

}  // namespace ORVE_MCUC
