// The link and redundancy monitor.
#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/store/data_common.h"
#include "proto/store/statuscheck.h"

namespace ORVE_MCUC {
namespace {

constexpr StatusBlock kRedundancy[] = {{fpga::kRedundancyPorts1To4, 1},
                                       {fpga::kRedundancyPorts5To8, 1},
                                       {fpga::kRedundancyPorts9To16, 1},
                                       {fpga::kRedundancyPorts9To16 + 1, 1}};
constexpr SectionWords kRedundancyWords{
    "============SendRedundtoLSD======= Check redundant info change , send to LSD ======================",
    "============SendRedundtoLSD====== Finish send redundant info to LSD ======================"};

constexpr StatusBlock kOptRedundancy[] = {{fpga::kOptRedundancy, 6}};
constexpr SectionWords kOptRedundancyWords{
    "============Send OPT RedundtoLSD======= Check redundant info change , send to LSD "
    "======================",
    "============Send OPT RedundtoLSD====== Finish send redundant info to LSD ======================"};

constexpr StatusBlock kNetLinks[] = {
    {fpga::kNetLinks[0], 1}, {fpga::kNetLinks[1], 1}, {fpga::kNetLinks[2], 1}, {fpga::kNetLinks[3], 1}};

constexpr StatusBlock kFiberLink[] = {{fpga::kFiberLink, 1}};
constexpr SectionWords kFiberLinkWords{
    .begin = "======================== Begin send fiber link info to LSD = ",
    .finish = "======================== Finish send fiber link info to LSD ",
    .rest = "======================"};
constexpr SectionWords kGenLockWords{.begin = "======================== Begin send fiber link info to LSD ",
                                     .finish = kFiberLinkWords.finish,
                                     .rest = kFiberLinkWords.rest};

constexpr StatusBlock kBelowFibers[] = {{fpga::kFiberBelowLink, 4}};
constexpr std::size_t kBelowFiberLength = 2;  // of one fiber path
constexpr SectionWords kFiber1Words{
    "======================== Begin send SendFiber1BelowLinkStatustoLSD link info to LSD "
    "======================",
    "======================== Finish send SendFiber1BelowLinkStatustoLSD link info to LSD "
    "======================"};
constexpr SectionWords kFiber2Words{
    "======================== Begin send SendFiber2BelowLinkStatustoLSD link info to LSD "
    "======================",
    "======================== Finish send SendFiber2BelowLinkStatustoLSD link info to LSD "
    "======================"};

constexpr StatusBlock kFiberRedundancy[] = {{fpga::kFiberRedundancy, 1}};
constexpr SectionWords kFiberRedundancyWords{
    .begin = "======================== Begin send fiber Redund info to LSD = ",
    .finish = "======================== Finish send fiber Redund info to LSD ",
    .rest = "======================"};
constexpr SectionWords kFiberCopyWords{
    "======================== Begin send SendFiberCopyStatustoLSD State info to LSD ======================",
    "======================== Finish send SendFiberCopyStatustoLSD State info to LSD ======================"};

constexpr StatusBlock kFiberToNet[] = {{fpga::kFiberToNetStatus, 2}};
constexpr SectionWords kFiberToNetWords{
    "======================== Begin send SendFiberToNetStatustoLSD State info to LSD ======================",
    "======================== Finish send SendFiberToNetStatustoLSD State info to LSD "
    "======================"};

// Ticks, counted from 1 for the one that saw the change, after which the cards behind a changed link are
// measured; without any link this is given up earlier than with cards that do not answer.
constexpr uint8_t kLinkChanged = 1;
constexpr uint8_t kLinkSettled = 4;
constexpr uint8_t kLastWait = 10;
constexpr uint8_t kLastTry = 30;

Data_Global& store() {
  return *Data_Global::getInstance();
}

// Pushes a block byte by byte, as it was read. The image is left alone: what it says of these registers was
// configured.
void pushBytes(uint32_t fpgaRegister, std::span<const uint8_t> bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i)
    store().SendDatetoLSD(reg::ofFeature(fpgaRegister) + static_cast<uint32_t>(i), bytes.subspan(i, 1));
}

// A check of one block that is pushed byte by byte.
template <std::size_t N>
void checkBytes(ByteImage<N>& last, const StatusBlock (&block)[1], const SectionWords& words) {
  const uint32_t first = block[0].fpgaRegister;
  const auto push = [first](const StatusReading& now) { pushBytes(first, now.bytes); };
  checkStatus(last, block, framed(words, push));
}

void compareBelowFiber(ByteImage<kBelowFiberLength>& last, std::span<const uint8_t> now,
                       uint32_t fpgaRegister, const SectionWords& words) {
  const auto pushLinks = [fpgaRegister](const StatusReading& status) {
    pushBytes(fpgaRegister, status.bytes);
    store().LinkStateChanged = kLinkChanged;
  };
  compareStatus(last, {now}, framed(words, pushLinks));
}

void checkFiberLink(const SectionWords& words) {
  const auto push = [](const StatusReading& now) { store().SendFiberLinkInfo(now.bytes); };
  checkStatus(store().fiberlink_buff, kFiberLink, framed(words, push));
}

// The four registers of a check by their groups of ports: 1 to 4, 5 to 8, 9 to 16.
struct PortGroups {
  std::span<const uint8_t> ports1To4;  // empty where something was not read
  std::span<const uint8_t> ports5To8;
  std::span<const uint8_t> ports9To16;
};
PortGroups groupsOf(const StatusReading& now) {
  PortGroups groups;
  if (now.hasRead(0)) groups.ports1To4 = now.bytes.subspan(0, 1);
  if (now.hasRead(1)) groups.ports5To8 = now.bytes.subspan(1, 1);
  if (now.hasRead(2) && now.hasRead(3)) groups.ports9To16 = now.bytes.subspan(2, 2);
  return groups;
}

void logNetLinks(std::span<const uint8_t, 4> now) {
  PARLEND_TRACE(kInfo)
      << "============SendNetLinktoLSD======= Check NetLink info change , send to LSD tmp_buff:" << now[0]
      << ":" << now[1] << ":" << now[2] << ":" << now[3];
  PARLEND_TRACE(kInfo) << "<<<<<<<< SendNetLinktoLSD -------- SourceLinkStatus:" << store().GigaPhyLinkSta
                       << " -> NowChangedLinstatus:" << fpga::netLinkWord(now) << " >>>>>>>>";
}

// Whether the cards behind a changed link may be measured.
bool linkHasSettled(bool lsdConnected) {
  return store().LinkStateChanged >= kLinkSettled && lsdConnected && store().linkedPorts() != 0;
}

// One tick more, or the end after the last one.
void countTick(uint8_t last) {
  RelaxedByte& counter = store().LinkStateChanged;
  counter = counter < last ? static_cast<uint8_t>(counter + 1) : uint8_t{0};
}

}  // namespace

void Tprocess_ctl::SendRedundtoLSD() {
  const auto pushGroups = [this](const StatusReading& now) {
    const PortGroups groups = groupsOf(now);
    SendRedundtoLSD1_4(groups.ports1To4);
    SendRedundtoLSD5_8(groups.ports5To8);
    SendRedundtoLSD9_16(groups.ports9To16);
  };
  checkStatus(store().SendRedundtoLSD_buff, kRedundancy, framed(kRedundancyWords, pushGroups));
  checkBytes(store().SendOptRedundtoLSD_buff, kOptRedundancy, kOptRedundancyWords);
}

void Tprocess_ctl::SendNetLinktoLSD() {
  const auto pushGroups = [this](const StatusReading& now) {
    logNetLinks(now.bytes.first<4>());
    const PortGroups groups = groupsOf(now);
    SendNetLinktoLSD1_4(groups.ports1To4);
    SendNetLinktoLSD5_8(groups.ports5To8);
    SendNetLinktoLSD9_16(groups.ports9To16);
    store().LinkStateChanged = kLinkChanged;
    PARLEND_TRACE(kInfo)
        << "============SendNetLinktoLSD====== Finish send NetLink info to LSD ======================";
  };
  // Forgotten pushes and a bus that cannot be read do not make linked ports unlinked.
  if (!checkStatus(store().SendNetLinktoLSD_buff, kNetLinks, pushGroups)) return;
  store().GigaPhyLinkSta = fpga::netLinkWord(store().SendNetLinktoLSD_buff.part<0, 4>());
  store().netLinksSeen = true;
}

void Tprocess_ctl::SendFiberLinktoLSD() {
  checkFiberLink(kFiberLinkWords);
}

void Tprocess_ctl::SendFiberBelowLinkStatustoLSD() {
  ByteImage<kBelowFiberLength>& links1 = store().Fiber1BelowLinkStatus_buff;
  ByteImage<kBelowFiberLength>& links2 = store().Fiber2BelowLinkStatus_buff;
  std::array<uint8_t, 2 * kBelowFiberLength> now{};
  const auto fiber1 = std::span(now).first<kBelowFiberLength>();
  const auto fiber2 = std::span(now).last<kBelowFiberLength>();
  std::ranges::copy(links1.bytes(), fiber1.begin());
  std::ranges::copy(links2.bytes(), fiber2.begin());
  const bool read = readStatus(kBelowFibers, now).hasRead(0);
  links1.put<0>(std::span<const uint8_t, kBelowFiberLength>(fiber1));
  links2.put<0>(std::span<const uint8_t, kBelowFiberLength>(fiber2));
  if (read) store().fiberLinksSeen = true;
  compareBelowFiber(store().fiber1BelowPushed, fiber1, fpga::kFiberBelowLink, kFiber1Words);
  compareBelowFiber(store().fiber2BelowPushed, fiber2, fpga::kFiberBelowLink + kBelowFiberLength,
                    kFiber2Words);
}

void Tprocess_ctl::SendFiberRedundtoLSD() {
  checkBytes(store().fiberRedund_buff, kFiberRedundancy, kFiberRedundancyWords);
}

void Tprocess_ctl::SendFiberToNetStatustoLSD() {
  checkBytes(store().FiberToNetStatus_buff, kFiberToNet, kFiberToNetWords);
}

void Tprocess_ctl::SendFiberCopyStatustoLSD() {
  checkBytes(store().fiberCopyStatus_buff, kFiberRedundancy, kFiberCopyWords);
}

void Tprocess_ctl::SendGenLockLinktoLSD() {
  checkFiberLink(kGenLockWords);
}

void Tprocess_ctl::SendRecvCardParaToLsdByLinkChange() {
  if (store().LinkStateChanged == 0) return;
  if (!linkHasSettled(apipc_connect_status)) {
    PARLEND_TRACE(kInfo) << "=========Link changed ++ delay========";
    countTick(kLastWait);
    return;
  }
  PARLEND_TRACE(kInfo) << "============ SendRecvCardParaToLsdByLinkChange linkStatus= "
                       << store().LinkStateChanged << " GigaPhyLinkSta=" << store().GigaPhyLinkSta
                       << " Opt1GigaLinstate=" << store().Fiber1BelowLinkStatus_buff.le16(0)
                       << "Opt2GigaLinstate=" << store().Fiber2BelowLinkStatus_buff.le16(0);
  PARLEND_TRACE(kInfo)
      << "============SendNetLinktoLSD======= NetLink info change Send RvCardWide&High state:"
      << store().GigaPhyLinkSta << "=========";
  if (store().GetRecvCardSize_EnvNew() != 0) {
    countTick(kLastTry);
    return;
  }
  const CardSize card = store().ReceiveCardSize;
  PARLEND_TRACE(kInfo) << "============Read RvHW: " << card.width << " " << card.height << " ===";
  store().SendRVCardWHtoLSD();
  store().LinkStateChanged = 0;
}

void Tprocess_ctl::SendRedundtoLSD1_4(std::span<const uint8_t> checked) {
  store().pushMirror(fpga::kRedundancyPorts1To4, 1,
                     "Send 0x1E redundant info to LSD, the reg address = ", checked);
}
void Tprocess_ctl::SendRedundtoLSD5_8(std::span<const uint8_t> checked) {
  store().pushMirror(fpga::kRedundancyPorts5To8, 1,
                     "Send 0x9E redundant info to LSD, the reg address = ", checked);
}
void Tprocess_ctl::SendRedundtoLSD9_16(std::span<const uint8_t> checked) {
  store().pushMirror(fpga::kRedundancyPorts9To16, 2,
                     "Send 0x120~0x121 redundant info to LSD, the reg address = ", checked);
}

void Tprocess_ctl::SendNetLinktoLSD1_4(std::span<const uint8_t> checked) {
  store().pushMirror(fpga::kNetLinkPorts1To4, 1,
                     "Send 0x1f redundant info to LSD, the reg address = ", checked);
}
void Tprocess_ctl::SendNetLinktoLSD5_8(std::span<const uint8_t> checked) {
  store().pushMirror(fpga::kNetLinkPorts5To8, 1,
                     "Send 0x9f redundant info to LSD, the reg address = ", checked);
}
void Tprocess_ctl::SendNetLinktoLSD9_16(std::span<const uint8_t> checked) {
  store().pushMirror(fpga::kNetLinkPorts9To16, 2,
                     "Send 0x126~0x127 redundant info to LSD, the reg address = ", checked);
}

}  // namespace ORVE_MCUC
