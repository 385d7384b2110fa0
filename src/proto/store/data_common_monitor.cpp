// The monitor's parts that the store carries out itself.
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "proto/store/data_common.h"
#include "proto/store/statuscheck.h"

namespace ORVE_MCUC {
namespace {

constexpr StatusBlock kRoles[] = {
    {fpga::kMasterSlavePorts1To4, 4}, {fpga::kMasterSlavePorts5To8, 4}, {fpga::kMasterSlavePorts9To16, 4}};
constexpr SectionWords kRoleWords{
    "============SendRedundStstustoLSD======= Check redundantStatus info change , send to LSD "
    "======================",
    "============SendRedundStstustoLSD====== Finish send redundantStatus info to LSD ======================"};

}  // namespace

void Data_Global::SendRedundStatustoLSD() {
  // What the image says of the roles was configured: a failed write must not become a configuration.
  const auto pushRoles = [this](const StatusReading& now) {
    std::size_t at = 0;
    for (const StatusBlock& block : kRoles) {
      SendDatetoLSD(reg::ofFeature(block.fpgaRegister), now.bytes.subspan(at, block.length));
      at += block.length;
    }
  };
  checkStatus(SendRedundStatustoLSD_buff, kRoles, framed(kRoleWords, pushRoles));
}

void Data_Global::SendFiberLinkInfo(std::span<const uint8_t> checked) {
  pushMirror(fpga::kFiberLink, 1, "Send 0x1d7 fiber link status to LSD, the reg address = ", checked);
}

}  // namespace ORVE_MCUC
