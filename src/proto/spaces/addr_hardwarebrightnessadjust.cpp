#include "proto/spaces/addr_hardwarebrightnessadjust.h"

#include <algorithm>
#include <array>

#include "logwords.h"
#include "maps/cardmap.h"
#include "maps/flashmap.h"
#include "proto/spaces/brightnessboard.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "singleton.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kFileOffset = 0x00FFFFFF;
constexpr SectionWords kReading{
    .begin = "============================ Begin Read Bright Info =============================",
    .finish = "============================ Finish Read Bright Info ============================"};

struct BoardControl {
  BrightnessBoard board;
  BrightnessControl control{board};
};

Singleton<BoardControl>& holder() {
  static Singleton<BoardControl> m_pInstance;
  return m_pInstance;
}

// The mirror is newer than the flash; before it is loaded, and beyond it, the flash answers.
int ReadFromBrightnessInfo(IMD_proto3rd& request) {
  LogSection section(kReading);
  const uint32_t address = request.proto.m_uiRegisterUnitAddress;
  std::array<uint8_t, brightness::kMirrorSize> room{};
  const std::size_t length = request.proto.m_usValidDataLength;
  if (length > room.size()) {
    section.abandon();
    return kFailed;
  }
  const auto bytes = std::span(room).first(length);
  if (Addr_HardWareBrightnessAdjust::control().readMirror(address & kFileOffset, bytes)) {
    replyWith(request, bytes);
    return kDone;
  }
  return replyFromFlash(request, flash::ofBrightness(address), "ReadFromBrightnessInfo") == 0 ? kDone
                                                                                              : kFailed;
}

int WriteToBrightnessInfo(IMD_proto3rd& request) {
  if (!request.proto.m_data.empty()) return queueWrite<doAdjustBrightnessKey>(request);
  PARLEND_TRACE(kError) << "=== WriteBrightnessInfomation ===invalid data";
  return kBadAccess;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kBrightness>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kBrightness>(
      {.read = &ReadFromBrightnessInfo, .write = &WriteToBrightnessInfo, .entered = &logEntry});
  return kSpace;
}

BrightnessControl& Addr_HardWareBrightnessAdjust::control() {
  return holder().get([] { return new BoardControl; })->control;
}
void Addr_HardWareBrightnessAdjust::deleteInstance() {
  holder().destroy();
}

void Addr_HardWareBrightnessAdjust::SetBrightnessAdjustTable(uint32_t registerAddress,
                                                             std::span<const uint8_t> data) {
  control().SetBrightnessAdjustTable(registerAddress & kFileOffset, data);
}

void Addr_HardWareBrightnessAdjust::NewSendReceiveCardPara(uint32_t registerAddress, uint8_t port,
                                                           uint16_t card, std::span<const uint8_t> data) {
  writeCard({card::kReceivingCard, port, card}, registerAddress, data, "NewSendReceiveCardPara");
  if (registerAddress == card::kBrightness) {
    Data_Global::getInstance()->SendDatetoLSD(registerAddress,
                                              data.first(std::min<std::size_t>(data.size(), 1)));
  }
}

}  // namespace ORVE_MCUC
