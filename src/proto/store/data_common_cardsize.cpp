// Measuring the receiving cards.
#include <bit>
#include <utility>

#include "logwords.h"
#include "maps/cardmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kFirstCard = 0;

bool isOptical(uint8_t module) {
  return (module & fpga::kFiberModuleBits) != 0 && (module & fpga::kFiberLinkBits) != 0;
}

// Reads the size from the first card behind a port. 0, or -1 with the size a default one or unchanged.
int measure(MeasuredCards& cards, unsigned int port) {
  std::array<uint8_t, 4> answer{};
  const CardPlace first{card::kReceivingCard, static_cast<uint16_t>(port), kFirstCard};
  if (readCard(first, card::kSize, answer) != 0) {
    cards.ReceiveCardSize = CardSize{};
    PARLEND_TRACE(kInfo) << "=== Read receive card failed, return ====";
    return -1;
  }
  const CardSize card{le16(answer, 0), le16(answer, 2)};
  if (card.width == 0 || card.height == 0) {
    PARLEND_TRACE(kInfo) << "=== Read receive card Fail, ReceiveCardWidth&Height 0 ====";
    return -1;
  }
  cards.ReceiveCardSize = card;
  PARLEND_TRACE(kInfo) << "=== Read receive card OK, ReceiveCardWidth= " << card.width << "ReceiveCardHeight"
                       << card.height;
  return 0;
}

// Before its first tick the monitor has not read the links: a size that is asked for so early needs them now.
void readUnseenLinks(PortLinks& links) {
  if (!links.netLinksSeen) {
    std::array<uint8_t, fpga::kNetLinks.size()> bytes{};
    bool read = true;
    for (std::size_t i = 0; i < bytes.size(); ++i)
      read = readFpga(fpga::kNetLinks[i], std::span(bytes).subspan(i, 1)) == 0 && read;
    if (read) links.GigaPhyLinkSta = fpga::netLinkWord(bytes);
  }
  if (!links.fiberLinksSeen) {
    std::array<uint8_t, 4> bytes{};
    if (readFpga(fpga::kFiberBelowLink, bytes) != 0) return;
    links.Fiber1BelowLinkStatus_buff.put<0>(std::span(std::as_const(bytes)).first<2>());
    links.Fiber2BelowLinkStatus_buff.put<0>(std::span(std::as_const(bytes)).last<2>());
  }
}

int measureFirstLinked(MeasuredCards& cards, PortLinks& links) {
  uint8_t module = 0;
  readFpga(fpga::kFiberLink, {&module, 1});
  links.OptModuleLinkSta = module;
  if (links.linkedPorts() == 0) readUnseenLinks(links);
  PARLEND_TRACE(kInfo) << "Detect Opt link status = " << module;
  PARLEND_TRACE(kError) << "=== GetRecvCardSize_Env === Get tty16 Status =  " << links.GigaPhyLinkSta;
  const unsigned int linked = links.linkedPorts();
  const bool optical = isOptical(module);
  if (!optical && linked == 0) {
    cards.ReceiveCardSize = CardSize{};
    return -1;
  }
  // Behind a fiber converter every port reaches cards.
  const auto first = static_cast<unsigned int>(optical ? 0 : std::countr_zero(linked));
  return first < kMappedPorts ? measure(cards, first) : -1;
}

}  // namespace

int Data_Global::GetRecvCardSize_EnvNew() {
  const LogSection section(
      {"=========================== Begin GetRecvCardSize_Env =========================",
       "=========================== Finish GetRecvCardSize_Env ========================="});
  return measureFirstLinked(*this, *this);
}

void Data_Global::refreshCardSizeInScreenPara() {
  CardSize card;
  if (GetRecvCardSize_EnvNew() == 0) card = ReceiveCardSize;
  std::array<uint8_t, 4> bytes{};
  putLe16(bytes, 0, card.width);
  putLe16(bytes, 2, card.height);
  putBytes(*this, ScreenParaReg, screenpara::kCardSizeAt, bytes);
}

}  // namespace ORVE_MCUC
