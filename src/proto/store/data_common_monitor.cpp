// The monitor's parts that the store carries out itself.
#include "maps/fpgamap.h"
#include "proto/store/data_common.h"
#include "proto/store/statuscheck.h"

namespace ORVE_MCUC {
namespace {

constexpr StatusBlock kRoles[] = {
    {fpga::kMasterSlavePorts1To4, 4}, {fpga::kMasterSlavePorts5To8, 4}, {fpga::kMasterSlavePorts9To16, 4}};
constexpr StatusWords kRoleWords{
    "============SendRedundStstustoLSD======= Check redundantStatus info change , send to LSD "
    "======================",
    "============SendRedundStstustoLSD====== Finish send redundantStatus info to LSD ======================"};

}  // namespace

void Data_Global::SendRedundStatustoLSD() {
  const auto pushRoles = [this](auto) {
    for (const StatusBlock& block : kRoles) {
      pushMirror(block.fpgaRegister, block.length);
    }
  };
  checkStatus(SendRedundStatustoLSD_buff, kRoles, framed(kRoleWords, pushRoles));
}

void Data_Global::SendFiberLinkInfo() {
  pushMirror(fpga::kFiberLink, 1, "Send 0x1d7 fiber link status to LSD, the reg address = ");
}

}  // namespace ORVE_MCUC
