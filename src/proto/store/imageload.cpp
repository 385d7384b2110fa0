#include "proto/store/imageload.h"

#include "maps/flashmap.h"
#include "proto/store/data_common.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

template <std::size_t Length, std::size_t N>
int load(const RegisterImages& images, uint32_t address, ByteImage<N>& image, std::size_t at,
         FailureWords words = {}) {
  std::array<uint8_t, Length> bytes{};
  const int ret = readFlash(address, bytes, words);
  if (ret == 0) putBytes(images, image, at, bytes);
  return ret;
}

}  // namespace

int loadFeature(RegisterImages& images) {
  FeatureBytes bytes{};
  const int ret = Data_Global::RestoreDataFromFlash(1, bytes);
  if (ret == 0) putBytes(images, images.SendParameterReg, 0, bytes);
  return images.loadStates.feature.note(ret);
}

int loadGlobal(RegisterImages& images, FailureWords words) {
  LoadState& state = images.loadStates.global;
  if (state.loaded()) return 0;
  return state.note(load<kGlobalParaSize>(images, flash::kGlobalPara, ParaTable, 0, words));
}

int loadPortTable(RegisterImages& images, unsigned port) {
  const std::size_t at = portTableAt(port);
  return images.loadStates.portTables.at(port).note(
      load<kPortTableSize>(images, flash::kPositionTables + static_cast<uint32_t>(at), PortsTopoPara, at));
}

int loadNumberTable(RegisterImages& images, FailureWords words) {
  return images.loadStates.number.note(
      load<VsPartPara.size()>(images, flash::kNumberTable, VsPartPara, 0, words));
}

int loadScreenPara(RegisterImages& images, FailureWords words) {
  return images.loadStates.screen.note(
      load<screenpara::kStored>(images, flash::kScreenPara, images.ScreenParaReg, 0, words));
}

int loadRole(DeviceState& device, FailureWords words) {
  uint8_t role = 0;
  const int ret = device.roleLoad.note(readFlash(flash::kRole, {&role, 1}, words));
  if (ret == 0) device.PbufMorSMode = role;
  return ret;
}

}  // namespace ORVE_MCUC
