#include "proto/spaces/brightnessboard.h"

#include "calc/brightnesspacket.h"
#include "driverutil.h"
#include "maps/cardmap.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcucutil.h"
#include "proto/spaces/addr_hardwarebrightnessadjust.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr uint16_t kEveryCard = 0xFFFF;
constexpr int kSensorPauseMs = 2;
constexpr const char* kComponentsName = "AdjustCurrentComponentBrightness";

constexpr uint32_t flashOf(std::size_t offset) {
  return flash::kBrightnessFile + static_cast<uint32_t>(offset);
}

void toAllCards(uint32_t address, uint8_t port, uint8_t value) {
  Addr_HardWareBrightnessAdjust::NewSendReceiveCardPara(address, port, kEveryCard, {&value, 1});
}

}  // namespace

LocalMoment BrightnessBoard::now() {
  return DriverUtil::getInstance()->ReadMoment();
}

bool BrightnessBoard::readFile(std::size_t offset, std::span<uint8_t> bytes) {
  return readFlash(flashOf(offset), bytes) == 0;
}

void BrightnessBoard::writeFile(std::size_t offset, std::span<const uint8_t> bytes) {
  writeFlash(flashOf(offset), bytes, "SetBrightnessAdjustTable");
}

uint8_t BrightnessBoard::storedSerialTimeout() {
  return Data_Global::getInstance()->SendParameterReg[fpga::kSerialTimeout];
}

void BrightnessBoard::sendBrightness(uint8_t port, uint8_t brightness, BrightnessReason) {
  toAllCards(card::kBrightness, port, brightness);
}

void BrightnessBoard::sendComponents(uint8_t port, const std::array<uint8_t, 4>& components) {
  const auto select = [](unsigned selector) {
    const auto byte = static_cast<uint8_t>(selector);
    writeFpga(fpga::kComponentPacketPort, {&byte, 1}, kComponentsName);
  };
  select((port & 0x7FU) << 1);
  writeFpga(fpga::kComponentPacket, componentPacket(port, components), kComponentsName);
  select(unsigned{port} << 1 | 1);
}

void BrightnessBoard::sendBlack(uint8_t value) {
  toAllCards(card::kBlackOut, kEveryPort, value);
}

bool BrightnessBoard::askSensor(const SensorRecord& sensor, SensorAnswer& answer) {
  const CardPlace place{card::kMultiFunctionCard, sensor.PortAddr, sensor.BoardAddr};
  writeCard(place, card::kSensor, questionTo(sensor));
  Delay(kSensorPauseMs);
  return readCard(place, card::kSensor, answer) == 0;
}

void BrightnessBoard::pause(int milliseconds) {
  Delay(milliseconds);
}

bool BrightnessBoard::resetRequested() {
  return Data_Global::getInstance()->RebootRF != ResetState::kIdle;
}

}  // namespace ORVE_MCUC
