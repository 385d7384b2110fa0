#include "proto/store/imageload.h"

#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

template <std::size_t Length, std::size_t N>
int load(const RegisterImages& images, uint32_t address, ByteImage<N>& image, std::size_t at) {
  std::array<uint8_t, Length> bytes{};
  const int ret = readFlash(address, bytes);
  if (ret == 0) putBytes(images, image, at, bytes);
  return ret;
}

// An output that was closed, or opened since, stays so, and the status stays today's.
void loadFeatureLate(Data_Global& store) {
  const uint8_t output = store.SendParameterReg[fpga::kOutputEnable];
  if (loadFeature(store) != 0 || !isOnline(store)) return;
  store.SendParameterReg[fpga::kOutputEnable] = output;
  restoreFeature(store);
  store.SendParameterReg[fpga::kOutputEnable] = output;
  readHardwareStatus(store);
}

}  // namespace

int loadFeature(RegisterImages& images) {
  std::array<uint8_t, 512> bytes{};
  const int ret = Data_Global::RestoreDataFromFlash(1, bytes);
  if (ret == 0) putBytes(images, images.SendParameterReg, 0, bytes);
  return images.loadFailures.feature.note(ret);
}

int loadGlobal(RegisterImages& images) {
  LoadFailure& failure = images.loadFailures.global;
  if (failure.loaded()) return 0;
  return failure.note(load<kGlobalParaSize>(images, flash::kGlobalPara, ParaTable, 0));
}

int loadPortTable(RegisterImages& images, unsigned port) {
  const std::size_t at = portTableAt(port);
  return images.loadFailures.portTables.at(port).note(
      load<kPortTableSize>(images, flash::kPositionTables + static_cast<uint32_t>(at), PortsTopoPara, at));
}

int loadNumberTable(RegisterImages& images) {
  return images.loadFailures.number.note(load<VsPartPara.size()>(images, flash::kNumberTable, VsPartPara, 0));
}

int loadScreenPara(RegisterImages& images) {
  return images.loadFailures.screen.note(
      load<screenpara::kStored>(images, flash::kScreenPara, images.ScreenParaReg, 0));
}

int loadRole(Data_Global& store) {
  uint8_t role = 0;
  const int ret = store.loadFailures.role.note(readFlash(flash::kRole, {&role, 1}));
  if (ret == 0) store.PbufMorSMode = role;
  return ret;
}

void loadWhatIsMissing(Data_Global& store) {
  const LoadFailures& failed = store.loadFailures;
  if (failed.feature) loadFeatureLate(store);
  if (failed.global) loadGlobal(store);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    if (failed.portTables[port] && loadPortTable(store, port) == 0) restorePortTable(store, port);
  }
  if (failed.number && loadNumberTable(store) == 0) restoreNumberTable(store);
  if (failed.screen) loadScreenPara(store);
  if (failed.role) loadRole(store);
}

}  // namespace ORVE_MCUC
