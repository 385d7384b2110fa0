#include "proto/tshl_ctl.h"

#include <utility>

#include "logwords.h"
#include "mcuctrace.h"
#include "proto/spaces/spaces.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

template <uint32_t base>
concept Served = requires {
  spaceAt(At<base>{});
};

template <uint32_t base>
int enter(IMD_proto3rd* msgIMD, const Fshl_cmd*, int) {
  return spaceAt(At<base>{}).Ssh_cmd(*msgIMD);
}
template <uint32_t base>
int print(IMD_proto3rd*) {
  return spaceAt(At<base>{}).Ssh_print();
}

// The router's row of a row of the map.
template <std::size_t no>
constexpr Fshl_cmd rootRow() {
  constexpr const SpaceRow& row = kSpaces[no];
  constexpr uint32_t space = firstBase(row);
  static_assert(Served<space>, "a row of maps/spaces.h has no line in proto/spaces/spaces.h");
  return {.RegisterAddr = row.base,
          .cmd_str = row.name,
          .cmd_exp = row.text,
          .called_fun = &enter<space>,
          .print_fun = &print<space>};
}

constexpr auto kRootRows = []<std::size_t... no>(std::index_sequence<no...>) {
  return std::array{rootRow<no>()...};
}
(std::make_index_sequence<kSpaces.size()>{});

constexpr SectionWords kTask{
    "============================= Begin SendCard Task ===============================",
    "============================= Finish SendCard Task =============================="};

}  // namespace

constinit const std::array<Fshl_cmd, 71> Tshl_ctl::cmd_root = padded<71>(kRootRows);

Tshl_ctl* Tshl_ctl::getInstance() {
  static Tshl_ctl instance;
  return &instance;
}

int Tshl_ctl::initialize() {
  for (uint32_t no = 0; cmd_root[no].cmd_str != nullptr; ++no) {
    m_mapProtoShl[cmd_root[no].RegisterAddr] = {no, &cmd_root[no]};
  }
  return 1;
}

int Tshl_ctl::Ssh_StartSendCard(IMD_proto3rd* msgIMD) {
  if (msgIMD == nullptr) {
    PARLEND_TRACE(kError) << "=== Ssh_StartSendCard ===Ssh_StartSendCard: The proto is NULL! return.";
    return kRefused;
  }
  LogSection section(kTask);
  const uint32_t address = msgIMD->proto.m_uiRegisterUnitAddress;
  PARLEND_TRACE(kInfo) << "Recv Register Address : " << CTrace::hex << address
                       << " length : " << msgIMD->proto.m_usValidDataLength;
  const auto hit = m_mapProtoShl.find(reg::routerKey(address));
  if (hit == m_mapProtoShl.end()) {
    PARLEND_TRACE(kError) << "=== Ssh_StartSendCard ===Ssh_StartSendCard: Invalid register address!";
    section.abandon();
    return kRefused;
  }
  const Fshl_cmd* row = hit->second.cmd;
  return row->called_fun(msgIMD, row, 0);
}

void Tshl_ctl::Ssh_cmdOffset(IMD_proto3rd* msgIMD) {
  const LogSection section(
      {"-----------Ssh_cmdOffset begin------------", "-----------Ssh_cmdOffset end--------------"});
  const auto hit = m_mapProtoShl.find(msgIMD->proto.m_uiRegisterUnitAddress & reg::kWideMask);
  if (hit == m_mapProtoShl.end()) {
    PARLEND_TRACE(kError) << "=== Ssh_cmdOffset ===Ssh_cmdOffset: Invalid register access";
  } else {
    hit->second.cmd->print_fun(msgIMD);
  }
}

int Tshl_ctl::Ssh_cmdAll() {
  const LogSection section(
      {"-----------Ssh_cmdAll begin------------", "-----------Ssh_cmdAll end--------------"});
  for (const auto& [key, entry] : m_mapProtoShl) {
    PARLEND_TRACE(kInfo) << "Ssh_cmdAll: register base = " << CTrace::hex << key
                         << " cmd exp = " << entry.cmd->cmd_exp;
  }
  return 0;
}

}  // namespace ORVE_MCUC
