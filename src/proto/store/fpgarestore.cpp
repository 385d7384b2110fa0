#include "proto/store/fpgarestore.h"

#include <algorithm>

#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "proto/store/screenoffset.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "RestoreFPGA";
constexpr uint8_t kOutputModes[] = {0x20, 0x21, 0x10};  // the first one is used in place of any other

void mendImage(RegisterImages& images) {
  FeatureDraft mended;
  const uint8_t mode = images.SendParameterReg[fpga::kOutputMode];
  if (std::find(std::begin(kOutputModes), std::end(kOutputModes), mode) == std::end(kOutputModes))
    mended.put(fpga::kOutputMode, kOutputModes[0]);
  if (images.SendParameterReg[fpga::kOutputEnable] == fpga::kOutputRestored)
    mended.put(fpga::kOutputEnable, 0);
  putFeature(images, mended);
}

}  // namespace

bool isOnline(const Data_Global& store) {
  return store.FpgaOnlineFlag == 1;
}

bool restoreFeature(Data_Global& store) {
  if (store.loadFailures.feature) return false;
  mendImage(store);
  if (!isOnline(store)) return false;
  const int ret = putFeature(store, {}, fpga::kFeatureFirst, fpga::kFeatureRestoreLength, kCaller);
  PARLEND_TRACE(kInfo) << "Restore Feature FPGA Space ok !";
  applyScreenOffset(store);
  return ret == 0;
}

bool restorePortTable(Data_Global& store, unsigned port) {
  if (!isOnline(store) || store.loadFailures.portTables.at(port)) return false;
  const int written = rewritePortTable(store, port);
  PARLEND_TRACE(kInfo) << "Write to FPGA, the ret = " << written;
  return written == 0;
}

bool restoreNumberTable(Data_Global& store) {
  if (!isOnline(store) || store.loadFailures.number) return false;
  struct Step {
    NumberPart part;
    const char* written;
  };
  constexpr Step kSteps[] = {
      {kNumberPorts0To3, "Write Port 0 ~ 3 vspara to FPGA , the ret = "},
      {kNumberPorts4To7, "Write Port 4 ~ 7 vspara to FPGA , the ret = "},
      {kNumberPorts8To11, "Write Port 8 ~ 11 vspara to FPGA , the ret = "},
      {kNumberCommon, "Write vsCommPara to FPGA , the ret = "},
  };
  bool whole = true;
  for (const auto& [part, written] : kSteps) {
    const int ret = writeImage(store, VsPartPara, part.at, part.length, part.fpga);
    PARLEND_TRACE(kInfo) << written << ret;
    whole = whole && ret == 0;
  }
  PARLEND_TRACE(kInfo) << "SM2W_tmp Write to FPGA ,SPI_Receive_Buf[0x109]  = " << VsPartPara[kBitDepthMarkAt];
  return whole;
}

// The flash holds these registers as they were in the last run.
void readHardwareStatus(Data_Global& store) {
  if (!isOnline(store)) return;
  for (const fpga::Run& run : fpga::kHardwareStatus) {
    std::array<uint8_t, 2> bytes{};
    const int ret =
        readThrough(store, store.SendParameterReg, run.first, run.first, std::span(bytes).first(run.length));
    if (ret != 0)
      PARLEND_TRACE(kError) << "=== RestoreFPGA ===the status at " << CTrace::hex << run.first
                            << " cannot be read. ret = " << ret;
  }
}

}  // namespace ORVE_MCUC
