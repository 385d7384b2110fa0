#include "proto/store/imageload.h"

#include "maps/flashmap.h"
#include "proto/store/data_common.h"
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

int remember(RelaxedValue<bool>& failed, int ret) {
  failed = ret != 0;
  return ret;
}

}  // namespace

int loadFeature(RegisterImages& images) {
  std::array<uint8_t, 512> bytes{};
  const int ret = Data_Global::RestoreDataFromFlash(1, bytes);
  if (ret == 0) putBytes(images, images.SendParameterReg, 0, bytes);
  return remember(images.loadFailures.feature, ret);
}

int loadGlobal(RegisterImages& images) {
  LoadFailures& failures = images.loadFailures;
  if (failures.globalLoaded) return 0;
  const int ret = load<kGlobalParaSize>(images, flash::kGlobalPara, ParaTable, 0);
  failures.globalLoaded = ret == 0;
  return remember(failures.global, ret);
}

int loadPortTable(RegisterImages& images, unsigned port) {
  const std::size_t at = portTableAt(port);
  const int ret =
      load<kPortTableSize>(images, flash::kPositionTables + static_cast<uint32_t>(at), PortsTopoPara, at);
  RelaxedValue<uint16_t>& failed = images.loadFailures.portTables;
  const auto bit = static_cast<uint16_t>(1U << port);
  failed = static_cast<uint16_t>(ret == 0 ? failed & ~bit : failed | bit);
  return ret;
}

int loadNumberTable(RegisterImages& images) {
  return remember(images.loadFailures.number,
                  load<VsPartPara.size()>(images, flash::kNumberTable, VsPartPara, 0));
}

int loadScreenPara(RegisterImages& images) {
  return remember(images.loadFailures.screen,
                  load<screenpara::kStored>(images, flash::kScreenPara, images.ScreenParaReg, 0));
}

void loadWhatIsMissing(RegisterImages& images) {
  const LoadFailures& failed = images.loadFailures;
  if (failed.feature) loadFeature(images);
  if (failed.global) loadGlobal(images);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    if ((failed.portTables >> port & 1) != 0) loadPortTable(images, port);
  }
  if (failed.number) loadNumberTable(images);
  if (failed.screen) loadScreenPara(images);
}

}  // namespace ORVE_MCUC
