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

// Calls with the offset of each block of a port's table. 0, or the first failure.
template <class Use>
int inBlocks(unsigned port, Use use) {
  if (port >= kMappedPorts) return -1;
  int result = 0;
  for (uint32_t at = 0; at < kPortTableSize; at += kBlock) {
    const int ret = use(at);
    if (result == 0) result = ret;
  }
  return result;
}

}  // namespace

void putPortWindow(FeatureDraft& draft, unsigned port, const ScreenWindow& window) {
  const std::size_t at = fpga::portWindow(port);
  draft.putLe16(at, low16(window.width));
  draft.putLe16(at + fpga::kWindowHeightAt, low16(window.height));
  draft.putLe16(at + fpga::kWindowXAt, low16(window.x));
  draft.putLe16(at + fpga::kWindowYAt, low16(window.y));
}

void putPortRoles(FeatureDraft& draft, uint8_t backup) {
  for (unsigned port = 0; port < kOutputPorts; ++port)
    draft.put(fpga::portRole(port), backup != 0 ? fpga::kBackup : fpga::kMaster);
}

void putMappedScreen(FeatureDraft& draft, uint32_t width, uint32_t height) {
  draft.putLe16(fpga::kScreenWidth, evenWidth(width));
  draft.putLe16(fpga::kScreenHeight, low16(height));
  draft.putLe16(fpga::kMappedWidth, low16(width));
}

void putOutputSize(FeatureDraft& draft, uint32_t width, uint32_t height) {
  draft.putLe16(fpga::kOutputWidth, low16(width));
  draft.putLe16(fpga::kOutputHeight, low16(height));
}

void putScreenSize(FeatureDraft& draft, uint32_t width, uint32_t height) {
  draft.putLe16(fpga::kScreenWidth, low16(width));
  draft.putLe16(fpga::kScreenHeight, low16(height));
}

void clearScreenOffset(RegisterImages& images, FailureWords failed) {
  FeatureDraft none;
  none.putLe16(fpga::kScreenOffsetX, 0);
  none.putLe16(fpga::kScreenOffsetY, 0);
  putFeature(images, none, fpga::kScreenOffsetX, 4, failed);
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

bool storeScreenPara(RegisterImages& images, CardSize card, std::span<const uint8_t, 5> layout,
                     const char* caller) {
  std::array<uint8_t, screenpara::kStored> bytes{1, screenpara::kConfigured};
  putLe16(bytes, screenpara::kCardSizeAt, card.width);
  putLe16(bytes, screenpara::kCardSizeAt + 2, card.height);
  std::copy(layout.begin(), layout.end(), bytes.begin() + screenpara::kLayoutAt);
  putBytes(images, images.ScreenParaReg, 0, bytes);
  images.loadStates.screen.settle();
  return writeFlash(flash::kScreenPara, bytes, {caller, "write 02100001 to flash failed. driverRet = "}) == 0;
}

void logPortLoad(const SmartScreen& screen, const PortSplit& split) {
  PARLEND_TRACE(kInfo) << (runsAlongRows(screen.mode) ? "horizontal line: RowOrColInOnePort = "
                                                      : "vertical line: RowOrColInOnePort = ")
                       << split.RowOrColInOnePort << " CardNumofOneCable = " << split.CardNumofOneCable;
}

bool roleIsKnown(const DeviceState& device, const char* caller) {
  if (!device.roleLoad.failed()) return true;
  PARLEND_TRACE(kError) << "=== " << caller << " ===the device's role cannot be read, the ports keep theirs.";
  return false;
}

void writeCardCounts(const RegisterImages& images, const std::array<uint32_t, kMappedPorts>& counts,
                     const char* caller) {
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    const uint16_t count = low16(counts[port]);
    const uint32_t at = cardCountOnFpga(port);
    bool written = true;
    for (uint32_t i = 0; i < 2; ++i) {
      const auto byte = static_cast<uint8_t>(count >> 8 * i);
      written = writeThrough(images, VsPartPara, cardCountAt(port) + i, at + i, {&byte, 1}) == 0 && written;
    }
    PARLEND_TRACE(kInfo) << "Weite CardNumEachPort " << port << " : addr" << CTrace::hex << at
                         << " Para: " << count;
    if (!written)
      PARLEND_TRACE(kError) << "=== " << caller << " ===the card count of port " << port
                            << " was not written.";
  }
}

int writePortTable(const RegisterImages& images, unsigned port,
                   std::span<const uint8_t, kPortTableSize> table) {
  return inBlocks(port, [&](uint32_t at) {
    return writeThrough(images, PortsTopoPara, portTableAt(port) + at, portTableOnFpga(port) + at,
                        table.subspan(at, kBlock));
  });
}

int rewritePortTable(const RegisterImages& images, unsigned port) {
  return inBlocks(port, [&](uint32_t at) {
    return writeImage(images, PortsTopoPara, portTableAt(port) + at, kBlock, portTableOnFpga(port) + at);
  });
}

std::array<uint8_t, kPortTableSize> portTableOf(const RegisterImages& images, unsigned port,
                                                const CardChain& chain) {
  std::array<uint8_t, kPortTableSize> table{};
  snapshot(images, PortsTopoPara, portTableAt(port), table);
  fillPortTable(chain, table);
  return table;
}

void writeAndSaveFeature(Data_Global& store, const FeatureDraft& draft, const char* caller) {
  putFeature(store, draft, fpga::kFeatureFirst, fpga::kFeatureMappingLength, caller);
  store.SaveParaToFlash(1, draft);
}

}  // namespace ORVE_MCUC
