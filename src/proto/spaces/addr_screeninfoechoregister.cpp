#include "proto/spaces/addr_screeninfoechoregister.h"

#include <algorithm>

#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr std::array kRows{offsetRow(reg::kScreenInfoEcho, "screen info echo", "screen info echo register",
                                     {1, 1024}, &Addr_ScreenInfoEchoRegister::DoScreenInfoEcho),
                           Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

}  // namespace

constinit std::array<Fshl_cmd, 2> Addr_ScreenInfoEchoRegister::cmd_tblOffset = kRows;

int Addr_ScreenInfoEchoRegister::DoScreenInfoEcho(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  return readOrWrite(msgIMD, &ReadFromScreenInfoEcho, &WriteToScreenInfoEcho);
}

int Addr_ScreenInfoEchoRegister::ReadFromScreenInfoEcho(IMD_proto3rd* msgIMD) {
  Data_Global& data = *Data_Global::getInstance();
  data.refreshCardSizeInScreenPara();
  const uint32_t address = msgIMD->proto.m_uiRegisterUnitAddress;
  const std::size_t position = address & 0xFF;
  const std::size_t length =
      std::min<std::size_t>(msgIMD->proto.m_usValidDataLength, data.ScreenParaReg.size());
  PARLEND_TRACE(kInfo) << "=======realAddress = 0x" << CTrace::hex << address
                       << ", OpValidLength = " << msgIMD->proto.m_usValidDataLength;
  // A read past the end of the table is filled up with zeros.
  const std::size_t inTable = std::min(length, data.ScreenParaReg.size() - position);
  auto& reply = msgIMD->proto.m_data;
  reply.assign(length, 0);
  return data.ScreenParaReg.copyTo(std::span(reply).first(inTable), position) ? kDone : kFailed;
}

int Addr_ScreenInfoEchoRegister::WriteToScreenInfoEcho(IMD_proto3rd* msgIMD) {
  return queueWrite(msgIMD, DoScreenInfoEchoKey, "DoScreenInfoEchoKey");
}

}  // namespace ORVE_MCUC
