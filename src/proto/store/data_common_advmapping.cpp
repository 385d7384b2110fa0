// The advanced screen configuration: calculated values to image, FPGA and flash.
#include <algorithm>

#include "calc/advmapping.h"
#include "logwords.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

constexpr char kCaller[] = "AdvCalcParaOfSenderInMosaicMode";

AdvancedScreen screenOf(const PortValues& rows, const PortValues& columns, const PortValues& xs,
                        const PortValues& ys) {
  AdvancedScreen screen;
  for (unsigned int port = 0; port < kMappedPorts; ++port) {
    screen[port] = {TempAdvPortCM[port], rows[port], columns[port], xs[port], ys[port]};
  }
  return screen;
}

void logBorders(const AdvancedScreen& screen, CardSize card) {
  if (!tracePasses(kInfo)) return;
  for (const AdvancedPort& port : screen) {
    PARLEND_TRACE(kInfo) << "TempPortBottomBorder: " << port.y + blockOf(port, card).height
                         << " TempAdvCfgPortRow: " << port.rows << " TempAdvCfgPortY[i]: " << port.y;
  }
  const PixelExtent extent = screenExtent(screen, card);
  PARLEND_TRACE(kInfo) << "TempCalVal: " << extent.width << " TempDviHeight: " << extent.height;
  for (const AdvancedPort& port : screen) {
    PARLEND_TRACE(kInfo) << "TempPortWidth[i]: " << blockOf(port, card).width
                         << " TempAdvCfgPortCol[i]: " << port.columns << " ReceiveCardWidth " << card.width;
  }
}

// The FPGA is given the largest block; the output size holds the extent.
void storeScreen(RegisterImages& images, FeatureDraft& draft, const AdvancedScreen& screen, CardSize card) {
  logBorders(screen, card);
  const PixelExtent block = largestBlock(screen, card);
  putMappedScreen(draft, block.width, block.height);
  PARLEND_TRACE(kInfo) << "TempDviWidth: " << evenWidth(block.width) << " TempDviHeight: " << block.height
                       << " RealDviWidth: " << block.width;
  constexpr std::array<uint8_t, 5> kNoLayout{};
  storeScreenPara(images, card, kNoLayout, kCaller);
}

void putWindows(FeatureDraft& draft, const AdvancedScreen& screen, CardSize card) {
  draft.put(fpga::kMappingOption, 0);
  for (unsigned int port = 0; port < kMappedPorts; ++port) {
    const PixelExtent block = blockOf(screen[port], card);
    putPortWindow(draft, port, {block.width, block.height, screen[port].x, screen[port].y});
  }
}

void countCards(const RegisterImages& images, const AdvancedScreen& screen) {
  std::array<uint32_t, kMappedPorts> counts{};
  std::transform(screen.begin(), screen.end(), counts.begin(),
                 [](const AdvancedPort& port) { return port.cards(); });
  writeCardCounts(images, counts, kCaller);
}

// False when the ports cannot be calculated; then nothing is changed.
bool accept(const AdvancedScreen& screen) {
  const AdvancedVerdict verdict = checkAdvanced(screen);
  if (verdict.valid) return true;
  PARLEND_TRACE(kError) << "=== AdvCalcParaOfSenderInMosaicMode ===PortParaInvalid: total card num = "
                        << verdict.total << " port para = " << int{verdict.portRefused};
  return false;
}

CardSize measuredCard(Data_Global& store) {
  PARLEND_TRACE(kInfo) << "=========================== Ready GetRecvCardSize_Env =========================";
  store.GetRecvCardSize_EnvNew();
  const CardSize card = store.ReceiveCardSize;
  PARLEND_TRACE(kInfo) << "ReceiveCardWidth: " << card.width << " ReceiveCardHeight: " << card.height;
  return card;
}

// The cards are measured once, so that windows and tables agree.
void mapScreen(Data_Global& store, FeatureDraft draft, const AdvancedScreen& screen, CardSize card) {
  storeScreen(store, draft, screen, card);
  putWindows(draft, screen, card);
  countCards(store, screen);
  for (unsigned int i = 0; i < kMappedPorts; ++i) {
    const AdvancedPort& port = screen[i];
    store.AdvCordinateCalc(0, port.mode, i, port.x, port.y, port.rows, port.columns, card);
  }
  if (roleIsKnown(store, kCaller)) store.SendMasterOrBackup(store.PbufMorSMode);
  writeAndSaveFeature(store, draft, kCaller);
}

}  // namespace

void Data_Global::AdvCalcParaGetSreenSize(const PortValues& rows, const PortValues& columns,
                                          const PortValues& xs, const PortValues& ys) {
  AdvCalcParaGetSreenSize(screenOf(rows, columns, xs, ys));
}

FeatureDraft Data_Global::AdvCalcParaGetSreenSize(const AdvancedScreen& screen) {
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  loadWhatIsMissing(*this);
  clearScreenOffset(*this,
                    {"AdvCalcParaGetSreenSize", "Clear XY_Offset failed! When Advanced LED configure ! "});
  const CardSize card = ReceiveCardSize;
  PARLEND_TRACE(kInfo) << "Advanced LED configure: ReceiveCardWidth = " << card.width
                       << " ReceiveCardHeight = " << card.height;
  const PixelExtent extent = screenExtent(screen, card);
  FeatureDraft draft;
  putOutputSize(draft, extent.width, extent.height);
  putScreenSize(draft, extent.width, extent.height);
  putFeature(*this, draft);
  DebugForScreenZero(8, 0, "AdvCalcParaGetSreenSize, ADV calc screen!!");
  SaveParaToFlash(1, draft);
  ChangeOutScreenPara(extent.width, extent.height);
  return draft;
}

int Data_Global::AdvCalcParaOfSenderInMosaicMode() {
  return AdvCalcParaOfSenderInMosaicMode(
      screenOf(TempAdvCfgPortRow, TempAdvCfgPortCol, TempAdvCfgPortX, TempAdvCfgPortY));
}

int Data_Global::AdvCalcParaOfSenderInMosaicMode(const AdvancedScreen& screen, const FeatureDraft& size) {
  const LogSection section(
      {"===================== Begin Calculate Advanced LED configure =======================",
       "===================== Finish Calculate Advanced LED configure ======================"});
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  loadWhatIsMissing(*this);
  const bool accepted = accept(screen);
  if (accepted) mapScreen(*this, size, screen, measuredCard(*this));
  return accepted ? 0 : kErrPortPara;
}

int Data_Global::AdvCordinateCalc(int, uint8_t mode, unsigned int port, uint16_t, uint16_t, uint16_t rows,
                                  uint16_t columns, std::optional<CardSize> card) {
  const CardChain chain = chainOf(mode, rows, columns, card.value_or(ReceiveCardSize));
  PARLEND_TRACE(kInfo) << "CasMode " << chain.mode << "RepTimes "
                       << kPortTableEntries / std::max<std::size_t>(1, chain.cards())
                       << " TempCardNumofCable " << std::max<uint32_t>(1, chain.cards())
                       << " TempColOrRowInOnePort " << chain.lineLength << "  TempRowOrColInOnePort "
                       << chain.lines;
  const auto table = portTableOf(*this, port, chain);
  PARLEND_TRACE(kInfo) << "ReceiveCardHeight " << chain.card.height << " ReceiveCardWidth "
                       << chain.card.width;
  if (const int ret = writePortTable(*this, port, table)) {
    PARLEND_TRACE(kError) << "=== AdvCordinateCalc ===the table of port " << port
                          << " was not written. ret = " << ret;
  }
  return 0;
}

}  // namespace ORVE_MCUC
