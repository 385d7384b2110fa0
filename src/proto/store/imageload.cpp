#include "proto/store/imageload.h"

#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

template <std::size_t Length, std::size_t N>
int load(const RegisterImages& images, uint32_t address, ByteImage<N>& image) {
  std::array<uint8_t, Length> bytes{};
  const int ret = readFlash(address, bytes);
  if (ret == 0) putBytes(images, image, 0, bytes);
  return ret;
}

// What was decided while flash could not be read is not taken back by the old values that it holds.
template <std::size_t Length, std::size_t N>
int load(const RegisterImages& images, uint32_t address, FpgaImage<N>& image, std::size_t at,
         LoadFailure& failure) {
  std::array<uint8_t, Length> bytes{};
  const int ret = readFlash(address, bytes);
  if (ret == 0) {
    CMutexGuardT<CMutexThread> guard(images.imageLock);
    static_cast<void>(image.load(bytes, at, failure));
  }
  return failure.note(ret);
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
  if (ret == 0) {
    CMutexGuardT<CMutexThread> guard(images.imageLock);
    FpgaImage<512>& image = images.SendParameterReg;
    static_cast<void>(image.load(bytes, 0, images.loadFailures.feature));
    // What the FPGA says of itself was never decided.
    image.written(0, fpga::kFeatureFirst, 0);
    for (const fpga::Run& run : fpga::kHardwareStatus) image.written(run.first, run.length, 0);
  }
  return images.loadFailures.feature.note(ret);
}

int loadGlobal(RegisterImages& images) {
  LoadFailure& failure = images.loadFailures.global;
  if (failure.loaded()) return 0;
  return failure.note(load<kGlobalParaSize>(images, flash::kGlobalPara, ParaTable));
}

int loadPortTable(RegisterImages& images, unsigned port) {
  const std::size_t at = portTableAt(port);
  return load<kPortTableSize>(images, flash::kPositionTables + static_cast<uint32_t>(at), PortsTopoPara, at,
                              images.loadFailures.portTables.at(port));
}

int loadNumberTable(RegisterImages& images) {
  return load<VsPartPara.size()>(images, flash::kNumberTable, VsPartPara, 0, images.loadFailures.number);
}

int loadScreenPara(RegisterImages& images) {
  return images.loadFailures.screen.note(
      load<screenpara::kStored>(images, flash::kScreenPara, images.ScreenParaReg));
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
