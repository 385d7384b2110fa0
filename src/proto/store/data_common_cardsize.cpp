// Measuring the receiving cards.
#include <bit>

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
int measure(Data_Global& store, unsigned int port) {
  std::array<uint8_t, 4> answer{};
  const CardPlace first{card::kReceivingCard, static_cast<uint16_t>(port), kFirstCard};
  if (readCard(first, card::kSize, answer) != 0) {
    store.ReceiveCardSize = CardSize{};
    PARLEND_TRACE(kInfo) << "=== Read receive card failed, return ====";
    return -1;
  }
  const CardSize card{le16(answer, 0), le16(answer, 2)};
  if (card.width == 0 || card.height == 0) {
    PARLEND_TRACE(kInfo) << "=== Read receive card Fail, ReceiveCardWidth&Height 0 ====";
    return -1;
  }
  store.ReceiveCardSize = card;
  PARLEND_TRACE(kInfo) << "=== Read receive card OK, ReceiveCardWidth= " << card.width << "ReceiveCardHeight"
                       << card.height;
  return 0;
}

int measureFirstLinked(Data_Global& store) {
  uint8_t module = 0;
  readFpga(fpga::kFiberLink, {&module, 1});
  store.OptModuleLinkSta = module;
  PARLEND_TRACE(kInfo) << "Detect Opt link status = " << module;
  PARLEND_TRACE(kError) << "=== GetRecvCardSize_Env === Get tty16 Status =  " << store.GigaPhyLinkSta;
  const unsigned int linked = store.linkedPorts();
  const bool optical = isOptical(module);
  if (!optical && linked == 0) {
    store.ReceiveCardSize = CardSize{};
    return -1;
  }
  // Behind a fiber converter every port reaches cards.
  const auto first = static_cast<unsigned int>(optical ? 0 : std::countr_zero(linked));
  return first < kMappedPorts ? measure(store, first) : -1;
}

}  // namespace

int Data_Global::GetRecvCardSize_EnvNew() {
  PARLEND_TRACE(kInfo) << "=========================== Begin GetRecvCardSize_Env =========================";
  const int result = measureFirstLinked(*this);
  PARLEND_TRACE(kInfo) << "=========================== Finish GetRecvCardSize_Env =========================";
  return result;
}

void Data_Global::refreshCardSizeInScreenPara() {
  CardSize card;
  if (GetRecvCardSize_EnvNew() == 0) card = ReceiveCardSize;
  ScreenParaReg.putLe16(screenpara::kCardSizeAt, card.width);
  ScreenParaReg.putLe16(screenpara::kCardSizeAt + 2, card.height);
}

}  // namespace ORVE_MCUC
