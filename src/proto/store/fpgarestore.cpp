#include "proto/store/fpgarestore.h"

#include <algorithm>

#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/imageload.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "proto/store/screenoffset.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "RestoreFPGA";
constexpr uint8_t kOutputModes[] = {0x20, 0x21, 0x10};  // the first one is used in place of any other

// An output that was closed, or opened since, stays so, and the status stays today's.
void loadFeatureLate(RegisterImages& images, bool online) {
  const uint8_t output = images.SendParameterReg[fpga::kOutputEnable];
  if (loadFeature(images) != 0 || !online) return;
  // For the FPGA, and once more for the image: its mark of an output that was closed is mended to 0.
  images.SendParameterReg[fpga::kOutputEnable] = output;
  mendFeature(images);
  restoreFeature(images);
  images.SendParameterReg[fpga::kOutputEnable] = output;
  readHardwareStatus(images);
}

}  // namespace

void mendFeature(RegisterImages& images) {
  if (images.loadStates.feature.failed()) return;  // a mended value would stand in a late load's way
  FeatureDraft mended;
  const uint8_t mode = images.SendParameterReg[fpga::kOutputMode];
  if (std::find(std::begin(kOutputModes), std::end(kOutputModes), mode) == std::end(kOutputModes))
    mended.put(fpga::kOutputMode, kOutputModes[0]);
  if (images.SendParameterReg[fpga::kOutputEnable] == fpga::kOutputRestored)
    mended.put(fpga::kOutputEnable, 0);
  putFeature(images, mended);
}

void restoreFeature(RegisterImages& images) {
  if (images.loadStates.feature.failed()) return;
  const int ret = putFeature(images, {}, fpga::kFeatureFirst, fpga::kFeatureRestoreLength, kCaller);
  images.restoredParts.feature = ret == 0;
  PARLEND_TRACE(kInfo) << "Restore Feature FPGA Space ok !";
  applyScreenOffset(images);
}

void restorePortTable(RegisterImages& images, unsigned port) {
  if (images.loadStates.portTables.at(port).failed()) return;
  const int written = rewritePortTable(images, port);
  images.restoredParts.portTables.at(port) = written == 0;
  PARLEND_TRACE(kInfo) << "Write to FPGA, the ret = " << written;
}

void restoreNumberTable(RegisterImages& images) {
  if (images.loadStates.number.failed()) return;
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
    const int ret = writeImage(images, VsPartPara, part.at, part.length, part.fpga);
    PARLEND_TRACE(kInfo) << written << ret;
    whole = whole && ret == 0;
  }
  images.restoredParts.number = whole;
  PARLEND_TRACE(kInfo) << "SM2W_tmp Write to FPGA ,SPI_Receive_Buf[0x109]  = " << VsPartPara[kBitDepthMarkAt];
}

// The flash holds these registers as they were in the last run.
void readHardwareStatus(RegisterImages& images) {
  for (const fpga::Run& run : fpga::kHardwareStatus) {
    std::array<uint8_t, 2> bytes{};
    const int ret = readThrough(images, images.SendParameterReg, run.first, run.first,
                                std::span(bytes).first(run.length));
    if (ret != 0)
      PARLEND_TRACE(kError) << "=== RestoreFPGA ===the status at " << CTrace::hex << run.first
                            << " cannot be read. ret = " << ret;
  }
}

void loadWhatIsMissing(Data_Global& store) {
  const LoadStates& states = store.loadStates;
  const bool online = isOnline(store);
  if (states.feature.failed()) loadFeatureLate(store, online);
  if (states.global.failed()) loadGlobal(store);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    if (states.portTables[port].failed() && loadPortTable(store, port) == 0 && online)
      restorePortTable(store, port);
  }
  if (states.number.failed() && loadNumberTable(store) == 0 && online) restoreNumberTable(store);
  if (states.screen.failed()) loadScreenPara(store);
  if (store.roleLoad.failed()) loadRole(store);
  if (store.restoredParts.all()) store.FpgaParaLoadFinish = true;
}

}  // namespace ORVE_MCUC
