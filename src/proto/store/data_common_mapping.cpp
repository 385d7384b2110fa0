// The smart screen configuration: calculated values to image, FPGA and flash.
#include "hextext.h"
#include "logwords.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/mappingsteps.h"
#include "proto/store/porttables.h"
#include "proto/store/smarttable.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kOutputForZero = 128;  // pixels, in place of a size that is zero
constexpr char kCaller[] = "CalculateParaOfSenderInMosaicMode";
constexpr int kImageTextRoom = 3 * kFeatureSize + 1;

// The image as it will be.
void logImage(const char* text, const RegisterImages& images, const FeatureDraft& draft) {
  if (!tracePasses(kInfo)) return;
  PARLEND_TRACE(kInfo) << text << HexText<kImageTextRoom>(featureBytes(images, draft)).view();
}

void logSplit(const SmartScreen& screen, const PortSplit& split) {
  logPortLoad(screen, split);
  PARLEND_TRACE(kInfo) << " line: UsedPortNum = " << split.UsedPortNum
                       << " LastPortRowOrColInOnePort = " << split.LastPortRowOrColInOnePort;
  PARLEND_TRACE(kInfo) << " line: PortWidth = " << split.PortWidth << " PortHeight = " << split.PortHeight;
  PARLEND_TRACE(kInfo) << " line: PortOffsetX = " << split.PortOffsetX
                       << " PortOffsetY = " << split.PortOffsetY;
  PARLEND_TRACE(kInfo) << " line: LastPortWidth = " << split.LastPortWidth
                       << " LastPortHeight = " << split.LastPortHeight;
  PARLEND_TRACE(kInfo) << "The used port number = " << split.UsedPortNum << " connect mode = " << screen.mode;
}

void storeScreen(RegisterImages& images, FeatureDraft& draft, const SmartScreen& screen) {
  putMappedScreen(draft, uint32_t{screen.columns} * screen.card.width,
                  uint32_t{screen.rows} * screen.card.height);
  const std::array<uint8_t, 5> layout{static_cast<uint8_t>(screen.rows), static_cast<uint8_t>(screen.columns),
                                      screen.mode, static_cast<uint8_t>(screen.cardsPerPort),
                                      static_cast<uint8_t>(screen.cardsPerPort >> 8)};
  if (!storeScreenPara(images, screen.card, layout, kCaller)) return;
  for (std::size_t i = 0; i < screenpara::kStored; ++i) {
    PARLEND_TRACE(kInfo) << "=== ScreenParaReg[" << i << "] = " << images.ScreenParaReg[i];
  }
}

void putWindows(FeatureDraft& draft, const SmartScreen& screen, const PortSplit& split) {
  const LogSection section(
      {"======================== Begin calculate Port X or Y ============================",
       "======================== Finish calculate Port X or Y ==========================="});
  draft.put(fpga::kMappingOption, 0);
  for (unsigned int port = 0; port < kMappedPorts; ++port) {
    const WindowOffset at = windowOffset(screen, split, port);
    putPortWindow(draft, port, {split.PortWidth, split.PortHeight, at.x, at.y});
  }
}

// What a slot holds behind its count belongs to the FPGA.
void refreshNumberParts(const RegisterImages& images) {
  for (const NumberPart& part : kNumberPortParts) {
    std::array<uint8_t, kNumberPorts0To3.length> room{};
    const int ret = readThrough(images, VsPartPara, part.at, part.fpga, std::span(room).first(part.length));
    if (ret != 0) {
      PARLEND_TRACE(kError) << "=== CalculateParaOfSenderInMosaicMode ===the card counts at " << CTrace::hex
                            << part.fpga << " cannot be read. ret = " << ret;
    }
  }
}

void countCards(const RegisterImages& images, const PortSplit& split) {
  constexpr SectionWords kCounting{
      "========================= Begin calculate number para ===========================",
      "========================= Finish calculate number para =========================="};
  const LogSection section(kCounting);
  refreshNumberParts(images);
  std::array<uint32_t, kMappedPorts> counts{};
  for (unsigned int port = 0; port < kMappedPorts; ++port) counts[port] = cardsBehind(split, port);
  writeCardCounts(images, counts, kCaller);
  PARLEND_TRACE(kInfo) << kCounting.finish;  // the section says it once more
}

// Whether a port's cards lie beyond the tables of ten ports.
bool runsOutOfTables(const SmartScreen& screen, const PortSplit& split) {
  for (uint32_t port = kMappedPorts; port < split.UsedPortNum; ++port) {
    if (repetitionsOf(chainAt(screen, split, port)) != 0) return true;
  }
  return false;
}

void logPlaced(const SmartScreen& screen, const PortSplit& split) {
  if (screen.mode == 1) PARLEND_TRACE(kInfo) << "left up, v end...";
  if (screen.mode == 7) PARLEND_TRACE(kInfo) << "right down, h end...";
  if (split.UsedPortNum > kMappedPorts) return;
  const char* digit = &"0123456789A"[split.UsedPortNum];
  PARLEND_TRACE(kInfo) << "cacl 0x3000000 0x0" << std::string_view(digit, 1) << " end";
}

// Ports beyond the used ones carry the same cards as these.
std::array<uint8_t, kPortTableSize> tableOf(const RegisterImages& images, const SmartScreen& screen,
                                            const PortSplit& split, unsigned port) {
  if (port < split.UsedPortNum) return portTableOf(images, port, chainAt(screen, split, port));
  return portTableOf(images, placeOf(split, port), {});
}

// False when there are not enough tables; what was calculated before stays.
bool placeCards(const RegisterImages& images, const SmartScreen& screen, const PortSplit& split) {
  LogSection section({"========================= Begin calculate position para =========================",
                      "======================== Finish calculate position para ========================="});
  if (runsOutOfTables(screen, split)) {
    constexpr int kEntry = 0;  // the first card lies beyond already
    PARLEND_TRACE(kError) << "ERROR:$$PortsTopoPara$$ out of memory!!!" << kEntry;
    section.abandon();
    return false;
  }
  logPlaced(screen, split);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    if (const int ret = writePortTable(images, port, tableOf(images, screen, split, port))) {
      PARLEND_TRACE(kError) << "=== CalculateParaOfSenderInMosaicMode ===the table of port " << port
                            << " was not written. ret = " << ret;
    }
  }
  return true;
}

void assignRoles(const Data_Global& store, FeatureDraft& draft, const PortSplit& split, uint8_t backup) {
  const LogSection section(
      {"========================= Begin calculate SlaveOrMaster para =========================",
       "======================== Finish calculate SlaveOrMaster para ========================="});
  putPortRoles(draft, backup);
  for (unsigned int i = 0; i < 4; ++i) {
    PARLEND_TRACE(kInfo) << "MasterSlaveVal 0x" << CTrace::hex
                         << static_cast<int>(fpga::kMasterSlavePorts1To4 + i) << ": 0x" << CTrace::hex
                         << int{backup != 0 ? fpga::kBackup : fpga::kMaster};
  }
  if (store.NormalBackupStatus != 0) {
    const unsigned int linked = store.GigaPhyLinkSta;
    for (unsigned int port = split.UsedPortNum; port < kMappedPorts; ++port) {
      if ((linked >> port & 1) != 0) draft.put(fpga::portRole(port), fpga::kBackup);
    }
  }
  logImage("WriteFpgaData SendParameterReg:", store, draft);
}

// False when the calculation has to stop as it is.
bool mapScreen(Data_Global& store, FeatureDraft& draft, const SmartScreen& screen, uint8_t backup) {
  storeScreen(store, draft, screen);
  const PortSplit split = splitOf(screen);
  logSplit(screen, split);
  putWindows(draft, screen, split);
  countCards(store, split);
  if (!placeCards(store, screen, split)) return false;
  if (roleIsKnown(store, kCaller)) assignRoles(store, draft, split, backup);
  return true;
}

}  // namespace

void Data_Global::CalculateParaGetSreenSize(const ByteImage<1024>& table, FeatureDraft decided) {
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  loadWhatIsMissing(*this);
  clearScreenOffset(*this,
                    {"CalculateParaGetSreenSize", "Clear XY_Offset failed! When smart LED configure."});
  const CardSize card = ReceiveCardSize;
  const SmartScreen screen = screenIn(table, {});
  auto width = static_cast<uint16_t>(uint32_t{card.width} * screen.columns);
  auto height = static_cast<uint16_t>(uint32_t{card.height} * screen.rows);
  PARLEND_TRACE(kInfo)
      << "===============================Storage Dvi Wide calc===================================";
  PARLEND_TRACE(kInfo) << " SM2W : DVI_Width =" << width << "; DVI_Height =" << height;
  if (width == 0 || height == 0) {
    width = height = kOutputForZero;
    PARLEND_TRACE(kInfo) << " Change Parlend Card : DVI_Width =" << width << "; DVI_Height =" << height;
  }
  PARLEND_TRACE(kInfo) << " SM2W===2 : DVI_Width =" << width << "; DVI_Height =" << height;
  if (const auto counter = storeOutputSize(width, height, "CalculateParaGetSreenSize"))
    logScreenChangeCounter(*counter);
  putOutputSize(decided, width, height);
  putScreenSize(decided, width, height);
  putFeature(*this, decided);
  DebugForScreenZero(7, 0, "CalculateParaGetSreenSize, calc screen!!");
  SaveParaToFlash(1, decided);
  putFeature(*this, decided, fpga::kOutputWidth, 4,
             {"CalculateParaGetSreenSize", "\n Write 0200_01EC to FPGA failed !!! ret = "});
}

void Data_Global::CalculateParaOfSenderInMosaicMode(const ByteImage<1024>& table,
                                                    const ByteImage<32>& chars) {
  LogSection section({"=================== Begin CalculateParaOfSenderInMosaicMode ====================",
                      "=================== Finish CalculateParaOfSenderInMosaicMode ===================="});
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  loadWhatIsMissing(*this);
  SmartScreen screen = screenIn(table, chars);
  screen.card = ReceiveCardSize;
  FeatureDraft draft;
  // The submission has cleared the mark; the FPGA, which a peer may have read since, is told only now.
  if (CalculateParaHandlerCnt != 0 && NormalBackupStatus != 0) draft.put(fpga::kBackupMark, fpga::kNoMark);
  if (!isValid(screen)) {
    PARLEND_TRACE(kError) << "=== CalculateParaOfSenderInMosaicMode ===Invalid Parameter! ";
  } else if (!mapScreen(*this, draft, screen, chars[kTempRoleAt])) {
    putFeature(*this, draft);
    section.abandon();
    return;
  }
  writeAndSaveFeature(*this, draft, kCaller);
}

}  // namespace ORVE_MCUC
