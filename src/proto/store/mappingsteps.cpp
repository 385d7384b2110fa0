#include "proto/store/mappingsteps.h"

#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kBlock = 1024;  // bytes of a port table that go to the FPGA at once

uint16_t low16(uint32_t value) {
  return static_cast<uint16_t>(value);
}

}  // namespace

void setPortWindow(Data_Global& store, unsigned int port, const ScreenWindow& window) {
  store.PortWidthUpdate(port, low16(window.width));
  store.PortHeightUpdate(port, low16(window.height));
  store.PortOffsetXUpdate(port, low16(window.x));
  store.PortOffsetYUpdate(port, low16(window.y));
}

void setMappedScreen(Data_Global& store, uint32_t width, uint32_t height) {
  auto& image = store.SendParameterReg;
  image.putLe16(fpga::kScreenWidth, low16((width + 1) & ~1U));
  image.putLe16(fpga::kScreenHeight, low16(height));
  image.putLe16(fpga::kMappedWidth, low16(width));
}

void setOutputSize(Data_Global& store, uint32_t width, uint32_t height, int point, const char* description) {
  store.SendParameterReg.putLe16(fpga::kOutputWidth, low16(width));
  store.SendParameterReg.putLe16(fpga::kOutputHeight, low16(height));
  store.DebugForScreenZero(point, 0, description);
}

void copyOutputToScreen(Data_Global& store) {
  auto& image = store.SendParameterReg;
  image.putLe16(fpga::kScreenWidth, image.le16(fpga::kOutputWidth));
  image.putLe16(fpga::kScreenHeight, image.le16(fpga::kOutputHeight));
}

void clearScreenOffset(Data_Global& store, FailureWords failed) {
  constexpr std::array<uint8_t, 4> kNone{};
  writeFpga(fpga::kScreenOffsetX, kNone, failed);
  store.SendParameterReg.putLe16(fpga::kScreenOffsetX, 0);
  store.SendParameterReg.putLe16(fpga::kScreenOffsetY, 0);
}

std::optional<uint8_t> storeOutputSize(uint32_t width, uint32_t height, const char* caller) {
  std::array<uint8_t, 8> record{};
  putLe32(record, 0, width);
  putLe32(record, 4, height);
  if (writeFlash(flash::kScreenSize, record, caller) != 0) return std::nullopt;
  uint8_t counter = 0;
  if (readFlash(flash::kScreenChangeCounter, {&counter, 1}) != 0) return std::nullopt;
  ++counter;
  if (writeFlash(flash::kScreenChangeCounter, {&counter, 1}, caller) != 0) return std::nullopt;
  return counter;
}

void resetScreenChangeCounter(const char* caller) {
  constexpr uint8_t kNone = 0;
  writeFlash(flash::kScreenChangeCounter, {&kNone, 1}, caller);
  logScreenChangeCounter(kNone);
}

void logScreenChangeCounter(uint8_t counter) {
  PARLEND_TRACE(kInfo) << "============================= Wrtie CfgScreenStatusPara = " << counter;
}

bool storeScreenPara(Data_Global& store, CardSize card, std::span<const uint8_t, 5> layout,
                     const char* caller) {
  std::array<uint8_t, screenpara::kStored> bytes{1, 0x55};
  putLe16(bytes, screenpara::kCardSizeAt, card.width);
  putLe16(bytes, screenpara::kCardSizeAt + 2, card.height);
  std::copy(layout.begin(), layout.end(), bytes.begin() + screenpara::kLayoutAt);
  store.ScreenParaReg.put<0>(std::span<const uint8_t, screenpara::kStored>(bytes));
  return writeFlash(flash::kScreenPara, bytes, {caller, "write 02100001 to flash failed. driverRet = "}) == 0;
}

int readScreenPara(Data_Global& store) {
  std::array<uint8_t, screenpara::kStored> bytes{};
  const int ret = readFlash(flash::kScreenPara, bytes);
  if (ret == 0) store.ScreenParaReg.put<0>(std::span<const uint8_t, screenpara::kStored>(bytes));
  return ret;
}

void logPortLoad(const SmartScreen& screen, const PortSplit& split) {
  PARLEND_TRACE(kInfo) << (runsAlongRows(screen.mode) ? "horizontal line: RowOrColInOnePort = "
                                                      : "vertical line: RowOrColInOnePort = ")
                       << split.RowOrColInOnePort << " CardNumofOneCable = " << split.CardNumofOneCable;
}

void writeCardCounts(const std::array<uint32_t, kMappedPorts>& counts, const char* caller) {
  for (unsigned int port = 0; port < kMappedPorts; ++port) {
    const uint16_t count = low16(counts[port]);
    const uint32_t at = cardCountOnFpga(port);
    VsPartPara.putLe16(cardCountAt(port), count);
    std::array<uint8_t, 2> bytes{};
    putLe16(bytes, 0, count);
    const int low = writeFpga(at, std::span(bytes).first(1));
    const int high = writeFpga(at + 1, std::span(bytes).last(1));
    PARLEND_TRACE(kInfo) << "Weite CardNumEachPort " << port << " : addr" << CTrace::hex << at
                         << " Para: " << count;
    if (low != 0 || high != 0)
      PARLEND_TRACE(kError) << "=== " << caller << " ===the card count of port " << port
                            << " was not written.";
  }
}

int writePortTable(unsigned int port) {
  if (port >= kMappedPorts) return -1;
  const auto table = portTable(port);
  int result = 0;
  for (uint32_t at = 0; at < kPortTableSize; at += kBlock) {
    const int ret = writeFpga(portTableOnFpga(port) + at, std::span(table).subspan(at, kBlock));
    if (result == 0) result = ret;
  }
  return result;
}

void updatePortTable(unsigned int port, const CardChain& chain) {
  auto table = portTable(port);
  fillPortTable(chain, table);
  setPortTable(port, table);
}

void writeAndSaveFeature(Data_Global& store, const char* caller) {
  const auto bytes = store.SendParameterReg.part<fpga::kFeatureFirst, fpga::kFeatureMappingLength>();
  writeFpga(fpga::kFeatureFirst, bytes, caller);
  store.SaveParaToFlash(1);
}

}  // namespace ORVE_MCUC
