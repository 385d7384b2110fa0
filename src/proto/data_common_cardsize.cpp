// Measuring the receiving cards.
#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/data_common.h"
#include "proto/fpgamap.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kSizeRegister = 0x02000017;  // of a receiving card: width u16, height u16
constexpr uint8_t kReceivingCard = 1;
constexpr unsigned int kFirstCard = 0;
constexpr uint8_t kFiberPresent = 0xA0;  // of the fiber module's state
constexpr uint8_t kFiberLinks = 0x0F;

bool isOptical(uint8_t module) {
  return (module & kFiberPresent) != 0 && (module & kFiberLinks) != 0;
}

// Reads the size from the first card behind a port. 0, or -1 with the size a default one or unchanged.
int measure(Data_Global& store, unsigned int port) {
  std::array<uint8_t, 4> answer{};
  const int ret =
      DriverUtil::getInstance()->ReadCardPara(kSizeRegister, static_cast<unsigned short>(port), kFirstCard,
                                              answer.size(), answer.data(), kReceivingCard);
  if (ret != 0) {
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
  DriverUtil& driver = *DriverUtil::getInstance();
  const auto module = static_cast<uint8_t>(driver.FPGAC5_ReadOneWord(0, 0, fpga::kFiberLink));
  store.OptModuleLinkSta = module;
  PARLEND_TRACE(kInfo) << "Detect Opt link status = " << module;
  const unsigned int copper = store.GigaPhyLinkSta;
  PARLEND_TRACE(kError) << "=== GetRecvCardSize_Env === Get tty16 Status =  " << copper;
  const unsigned int linked =
      copper | store.Fiber1BelowLinkStatus_buff.le16(0) | store.Fiber2BelowLinkStatus_buff.le16(0);
  const bool optical = isOptical(module);
  if (!optical && linked == 0) {
    store.ReceiveCardSize = CardSize{};
    return -1;
  }
  for (unsigned int port = 0; port < kMappedPorts; ++port) {
    if (optical || (linked >> port & 1) != 0) return measure(store, port);
  }
  return -1;
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
  ScreenParaReg.putLe16(6, card.width);
  ScreenParaReg.putLe16(8, card.height);
}

}  // namespace ORVE_MCUC
