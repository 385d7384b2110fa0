#include "proto/store/imageload.h"

#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "proto/store/data_common.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

template <std::size_t Length, std::size_t N>
int load(const RegisterImages& images, uint32_t address, ByteImage<N>& image, FailureWords words) {
  std::array<uint8_t, Length> bytes{};
  const int ret = readFlash(address, bytes, words);
  if (ret == 0) putBytes(images, image, 0, bytes);
  return ret;
}

// What was decided while flash could not be read is not taken back by the old values that it holds.
template <std::size_t Length, std::size_t N>
int load(const RegisterImages& images, uint32_t address, FpgaImage<N>& image, std::size_t at,
         LoadState& state, FailureWords words = {}) {
  std::array<uint8_t, Length> bytes{};
  const int ret = readFlash(address, bytes, words);
  if (ret == 0) changeImage(images, image, [&](auto& whole) { whole.load(bytes, at, state.failed()); });
  return state.note(ret);
}

}  // namespace

int loadFeature(RegisterImages& images) {
  FeatureBytes bytes{};
  const int ret = Data_Global::RestoreDataFromFlash(1, bytes);
  changeImage(images, images.SendParameterReg, [&](FeatureImage& image) {
    // What the FPGA says of itself.
    image.follow(0, fpga::kFeatureFirst);
    for (const fpga::Run& run : fpga::kHardwareStatus) image.follow(run.first, run.length);
    if (ret == 0) image.load(bytes, 0, images.loadStates.feature.failed());
  });
  return images.loadStates.feature.note(ret);
}

int loadGlobal(RegisterImages& images, FailureWords words) {
  LoadState& state = images.loadStates.global;
  if (state.loaded()) return 0;
  return state.note(load<kGlobalParaSize>(images, flash::kGlobalPara, ParaTable, words));
}

int loadPortTable(RegisterImages& images, unsigned port) {
  const std::size_t at = portTableAt(port);
  return load<kPortTableSize>(images, flash::kPositionTables + static_cast<uint32_t>(at), PortsTopoPara, at,
                              images.loadStates.portTables.at(port));
}

int loadNumberTable(RegisterImages& images, FailureWords words) {
  return load<VsPartPara.size()>(images, flash::kNumberTable, VsPartPara, 0, images.loadStates.number, words);
}

int loadScreenPara(RegisterImages& images, FailureWords words) {
  return images.loadStates.screen.note(
      load<screenpara::kStored>(images, flash::kScreenPara, images.ScreenParaReg, words));
}

int loadRole(DeviceState& device, FailureWords words) {
  uint8_t role = 0;
  const int ret = device.roleLoad.note(readFlash(flash::kRole, {&role, 1}, words));
  if (ret == 0) device.PbufMorSMode = role;
  return ret;
}

}  // namespace ORVE_MCUC
