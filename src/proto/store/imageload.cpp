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
  if (ret == 0) {
    putBytes(images, images.SendParameterReg, 0, bytes);
    images.loadFailures.featureLoaded = true;
  }
  return remember(images.loadFailures.feature, ret);
}

int loadFeatureLate(RegisterImages& images) {
  std::array<uint8_t, 512> bytes{};
  if (const int ret = Data_Global::RestoreDataFromFlash(1, bytes)) return ret;
  changeFeature(images, [&](ByteImage<512>& image) {
    for (const auto& [first, length] : kHardwareStatus)
      static_cast<void>(image.copyTo(std::span(bytes).subspan(first, length), first));
    static_cast<void>(image.copyFrom(bytes, 0));
  });
  images.loadFailures.featureLoaded = true;
  images.loadFailures.feature = false;
  return 0;
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
  RelaxedValue<uint16_t>& loaded = images.loadFailures.portTablesLoaded;
  const auto bit = static_cast<uint16_t>(1U << port);
  if (ret == 0) loaded = static_cast<uint16_t>(loaded | bit);
  failed = static_cast<uint16_t>(ret == 0 ? failed & ~bit : failed | bit);
  return ret;
}

int loadNumberTable(RegisterImages& images) {
  const int ret = load<VsPartPara.size()>(images, flash::kNumberTable, VsPartPara, 0);
  if (ret == 0) images.loadFailures.numberLoaded = true;
  return remember(images.loadFailures.number, ret);
}

int loadScreenPara(RegisterImages& images) {
  return remember(images.loadFailures.screen,
                  load<screenpara::kStored>(images, flash::kScreenPara, images.ScreenParaReg, 0));
}

int loadRole(Data_Global& store) {
  uint8_t role = 0;
  const int ret = readFlash(flash::kRole, {&role, 1},
                            {"BootRecover", "Can not read flash when get the PbufMorSMode in poweron! "});
  if (ret != 0) return ret;
  store.PbufMorSMode = role;
  store.roleKnown = true;
  return 0;
}

}  // namespace ORVE_MCUC
