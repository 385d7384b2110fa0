#include "proto/spaces/addr_cardprogmaspaceregister.h"

namespace ORVE_MCUC {
namespace {

constexpr Fshl_cmd programRow(uint32_t offset) {
  return offsetRow(offset, "sendcard program update", "sendcard program update", {256, 4096},
                   &Addr_CardProgmaSpaceRegister::ProcessCardProgmaSpace);
}
constexpr std::array kRows{programRow(0x0000), programRow(0x1000), Fshl_cmd{}};
static_assert(rowsAreSound(kRows));

}  // namespace

constinit std::array<Fshl_cmd, 3> Addr_CardProgmaSpaceRegister::cmd_tblOffset = kRows;

int Addr_CardProgmaSpaceRegister::ProcessCardProgmaSpace(IMD_proto3rd* msgIMD, Fshl_cmd*, int) {
  if (msgIMD == nullptr) return kRefused;
  const int result = readOrWrite(msgIMD, &ReadCardProgmaSpace, [](IMD_proto3rd*) -> int { return kRefused; });
  msgIMD->proto.m_ucAck = static_cast<uint8_t>(result);
  return result;
}

int Addr_CardProgmaSpaceRegister::ReadCardProgmaSpace(IMD_proto3rd* msgIMD) {
  msgIMD->proto.m_data.assign(msgIMD->proto.m_usValidDataLength, 0);
  return kDone;
}

}  // namespace ORVE_MCUC
